#ifndef FFRT_API_C_MUTEX_H
#define FFRT_API_C_MUTEX_H

#include "c/type_def.h"

// Mutex attributes: only the type is kept (ffrt_mutex_normal or ffrt_mutex_recursive).
FFRT_C_API int ffrt_mutexattr_init(ffrt_mutexattr_t *attr);
FFRT_C_API int ffrt_mutexattr_settype(ffrt_mutexattr_t *attr, int type);
FFRT_C_API int ffrt_mutexattr_gettype(ffrt_mutexattr_t *attr, int *type);
FFRT_C_API int ffrt_mutexattr_destroy(ffrt_mutexattr_t *attr);

// A task that has to wait for the mutex is suspended and gives its worker back; outside a task
// the calling thread blocks. attr may be NULL (a normal mutex). All return ffrt_success or an
// ffrt_error_t; trylock returns ffrt_error_busy when the mutex is held.
FFRT_C_API int ffrt_mutex_init(ffrt_mutex_t *mutex, const ffrt_mutexattr_t *attr);
FFRT_C_API int ffrt_mutex_lock(ffrt_mutex_t *mutex);
FFRT_C_API int ffrt_mutex_unlock(ffrt_mutex_t *mutex);
FFRT_C_API int ffrt_mutex_trylock(ffrt_mutex_t *mutex);
FFRT_C_API int ffrt_mutex_destroy(ffrt_mutex_t *mutex);

#endif // FFRT_API_C_MUTEX_H
