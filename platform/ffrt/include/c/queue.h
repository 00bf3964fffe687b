#ifndef FFRT_API_C_QUEUE_H
#define FFRT_API_C_QUEUE_H

#include "c/type_def.h"

typedef enum {
    ffrt_queue_serial,
    ffrt_queue_concurrent,
    ffrt_queue_max,
} ffrt_queue_type_t;

typedef void *ffrt_queue_t;

// Queue attributes: QoS, timeout and the timeout callback are kept but not acted upon on the
// host. Max concurrency bounds a concurrent queue (default 1); a serial queue always runs one.
FFRT_C_API int ffrt_queue_attr_init(ffrt_queue_attr_t *attr);
FFRT_C_API void ffrt_queue_attr_destroy(ffrt_queue_attr_t *attr);
FFRT_C_API void ffrt_queue_attr_set_qos(ffrt_queue_attr_t *attr, ffrt_qos_t qos);
FFRT_C_API ffrt_qos_t ffrt_queue_attr_get_qos(const ffrt_queue_attr_t *attr);
FFRT_C_API void ffrt_queue_attr_set_timeout(ffrt_queue_attr_t *attr, uint64_t timeout_us);
FFRT_C_API uint64_t ffrt_queue_attr_get_timeout(const ffrt_queue_attr_t *attr);
FFRT_C_API void ffrt_queue_attr_set_callback(ffrt_queue_attr_t *attr, ffrt_function_header_t *f);
FFRT_C_API ffrt_function_header_t *ffrt_queue_attr_get_callback(const ffrt_queue_attr_t *attr);
FFRT_C_API void ffrt_queue_attr_set_max_concurrency(ffrt_queue_attr_t *attr, const int max_concurrency);
FFRT_C_API int ffrt_queue_attr_get_max_concurrency(const ffrt_queue_attr_t *attr);

// attr may be NULL. Returns NULL for an unknown type.
FFRT_C_API ffrt_queue_t ffrt_queue_create(ffrt_queue_type_t type, const char *name, const ffrt_queue_attr_t *attr);
// Tasks that have not started are dropped (destroyed without running; waiters are released).
// A task already running is waited for, unless the call comes from that very task, in which
// case the queue goes away as soon as the task ends.
FFRT_C_API void ffrt_queue_destroy(ffrt_queue_t queue);

// Tasks of a serial queue run one at a time, in submission order once their delay has passed.
FFRT_C_API void ffrt_queue_submit(ffrt_queue_t queue, ffrt_function_header_t *f, const ffrt_task_attr_t *attr);
FFRT_C_API ffrt_task_handle_t ffrt_queue_submit_h(ffrt_queue_t queue, ffrt_function_header_t *f,
    const ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_queue_submit_f(ffrt_queue_t queue, ffrt_function_t func, void *arg,
    const ffrt_task_attr_t *attr);
FFRT_C_API ffrt_task_handle_t ffrt_queue_submit_h_f(ffrt_queue_t queue, ffrt_function_t func, void *arg,
    const ffrt_task_attr_t *attr);
// Like submit, but ahead of the queue's other waiting tasks.
FFRT_C_API void ffrt_queue_submit_head(ffrt_queue_t queue, ffrt_function_header_t *f, const ffrt_task_attr_t *attr);
FFRT_C_API ffrt_task_handle_t ffrt_queue_submit_head_h(ffrt_queue_t queue, ffrt_function_header_t *f,
    const ffrt_task_attr_t *attr);

// Blocks until the task has finished or was cancelled.
FFRT_C_API void ffrt_queue_wait(ffrt_task_handle_t handle);
// 0 when the task had not started and is now removed; ffrt_error when it is running or over.
FFRT_C_API int ffrt_queue_cancel(ffrt_task_handle_t handle);
// Tasks of the queue not yet started (delayed ones included).
FFRT_C_API uint64_t ffrt_queue_get_task_cnt(ffrt_queue_t queue);

#endif // FFRT_API_C_QUEUE_H
