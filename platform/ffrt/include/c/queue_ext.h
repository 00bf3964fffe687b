#ifndef FFRT_INNER_API_C_QUEUE_EXT_H
#define FFRT_INNER_API_C_QUEUE_EXT_H

#include "c/queue.h"

// Queue types reserved for the event handler framework; the host creates none of them.
typedef enum {
    ffrt_queue_eventhandler_interactive = 3,
    ffrt_queue_eventhandler_adapter = 4,
    ffrt_queue_inner_max,
} ffrt_inner_queue_type_t;

typedef enum {
    ffrt_inner_queue_priority_vip = 0,
    ffrt_inner_queue_priority_immediate,
    ffrt_inner_queue_priority_high,
    ffrt_inner_queue_priority_low,
    ffrt_inner_queue_priority_idle,
} ffrt_inner_queue_priority_t;

#endif // FFRT_INNER_API_C_QUEUE_EXT_H
