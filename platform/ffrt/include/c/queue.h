#ifndef FFRT_API_C_QUEUE_H
#define FFRT_API_C_QUEUE_H

#include "c/type_def.h"

typedef enum {
    ffrt_queue_serial,
    ffrt_queue_concurrent,
    ffrt_queue_max,
} ffrt_queue_type_t;

typedef void *ffrt_queue_t;

// Queue attributes: only the QoS is kept; the queue's tasks run at that level.
FFRT_C_API int ffrt_queue_attr_init(ffrt_queue_attr_t *attr);
FFRT_C_API void ffrt_queue_attr_destroy(ffrt_queue_attr_t *attr);
FFRT_C_API void ffrt_queue_attr_set_qos(ffrt_queue_attr_t *attr, ffrt_qos_t qos);

// attr may be NULL. The host makes serial queues only: NULL for any other type.
FFRT_C_API ffrt_queue_t ffrt_queue_create(ffrt_queue_type_t type, const char *name, const ffrt_queue_attr_t *attr);
// Tasks that have not started are dropped (destroyed without running; waiters are released).
// A task already running is waited for, unless the call comes from that very task, in which
// case the queue goes away as soon as the task ends.
FFRT_C_API void ffrt_queue_destroy(ffrt_queue_t queue);

// Tasks of a serial queue run one at a time, in submission order once their delay has passed.
FFRT_C_API ffrt_task_handle_t ffrt_queue_submit_h(ffrt_queue_t queue, ffrt_function_header_t *f,
    const ffrt_task_attr_t *attr);

#endif // FFRT_API_C_QUEUE_H
