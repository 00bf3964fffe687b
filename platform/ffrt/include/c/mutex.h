#ifndef FFRT_API_C_MUTEX_H
#define FFRT_API_C_MUTEX_H

#include "c/type_def.h"

// A task that has to wait for the mutex is suspended and gives its worker back; outside a task
// the calling thread blocks. attr may be NULL; the host makes normal mutexes only. All return
// ffrt_success or an ffrt_error_t.
FFRT_C_API int ffrt_mutex_init(ffrt_mutex_t *mutex, const ffrt_mutexattr_t *attr);
FFRT_C_API int ffrt_mutex_lock(ffrt_mutex_t *mutex);
FFRT_C_API int ffrt_mutex_unlock(ffrt_mutex_t *mutex);
FFRT_C_API int ffrt_mutex_destroy(ffrt_mutex_t *mutex);

#endif // FFRT_API_C_MUTEX_H
