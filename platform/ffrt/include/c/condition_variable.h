#ifndef FFRT_API_C_CONDITION_VARIABLE_H
#define FFRT_API_C_CONDITION_VARIABLE_H

#include <time.h>

#include "c/type_def.h"

// A task waiting on the condition is suspended and gives its worker back; outside a task the
// calling thread blocks. attr may be NULL. The mutex must be a normal (not recursive) one.
FFRT_C_API int ffrt_cond_init(ffrt_cond_t *cond, const ffrt_condattr_t *attr);
FFRT_C_API int ffrt_cond_broadcast(ffrt_cond_t *cond);
FFRT_C_API int ffrt_cond_wait(ffrt_cond_t *cond, ffrt_mutex_t *mutex);
// time_point is absolute, on CLOCK_MONOTONIC. Returns ffrt_error_timedout once it has passed.
FFRT_C_API int ffrt_cond_timedwait(ffrt_cond_t *cond, ffrt_mutex_t *mutex, const struct timespec *time_point);
FFRT_C_API int ffrt_cond_destroy(ffrt_cond_t *cond);

#endif // FFRT_API_C_CONDITION_VARIABLE_H
