#ifndef FFRT_INNER_API_FFRT_INNER_H
#define FFRT_INNER_API_FFRT_INNER_H

#include "ffrt.h"

#ifdef __cplusplus
#include "cpp/future.h"
#endif

#endif // FFRT_INNER_API_FFRT_INNER_H
