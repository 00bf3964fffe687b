#ifndef FFRT_API_C_SLEEP_H
#define FFRT_API_C_SLEEP_H

#include "c/type_def.h"

// Inside a task both give the worker back while they wait; outside a task they act on the thread.
FFRT_C_API int ffrt_usleep(uint64_t usec);
FFRT_C_API void ffrt_yield(void);

#endif // FFRT_API_C_SLEEP_H
