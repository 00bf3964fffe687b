#ifndef FFRT_INNER_API_FFRT_INNER_H
#define FFRT_INNER_API_FFRT_INNER_H

#include "ffrt.h"
#include "c/queue_ext.h"

#endif // FFRT_INNER_API_FFRT_INNER_H
