#ifndef FFRT_API_C_TASK_H
#define FFRT_API_C_TASK_H

#include "c/type_def.h"

// Task attributes live in caller-provided opaque storage: init before use, destroy after.
// Names longer than 95 bytes are cut. QoS, queue priority, stack size and timeout are kept
// and reported back but do not change scheduling on the host.
FFRT_C_API int ffrt_task_attr_init(ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_task_attr_set_name(ffrt_task_attr_t *attr, const char *name);
FFRT_C_API const char *ffrt_task_attr_get_name(const ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_task_attr_destroy(ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_task_attr_set_qos(ffrt_task_attr_t *attr, ffrt_qos_t qos);
FFRT_C_API ffrt_qos_t ffrt_task_attr_get_qos(const ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_task_attr_set_delay(ffrt_task_attr_t *attr, uint64_t delay_us);
FFRT_C_API uint64_t ffrt_task_attr_get_delay(const ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_task_attr_set_queue_priority(ffrt_task_attr_t *attr, ffrt_queue_priority_t priority);
FFRT_C_API ffrt_queue_priority_t ffrt_task_attr_get_queue_priority(const ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_task_attr_set_stack_size(ffrt_task_attr_t *attr, uint64_t size);
FFRT_C_API uint64_t ffrt_task_attr_get_stack_size(const ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_task_attr_set_timeout(ffrt_task_attr_t *attr, uint64_t timeout_us);
FFRT_C_API uint64_t ffrt_task_attr_get_timeout(const ffrt_task_attr_t *attr);

// Storage of ffrt_auto_managed_function_storage_size bytes for a function header and its
// payload; the runtime frees it after calling destroy. NULL when memory is exhausted.
FFRT_C_API void *ffrt_alloc_auto_managed_function_storage_base(ffrt_function_kind_t kind);

// Dependencies are not modelled on the host: in_deps and out_deps are ignored.
FFRT_C_API void ffrt_submit_base(ffrt_function_header_t *f, const ffrt_deps_t *in_deps, const ffrt_deps_t *out_deps,
    const ffrt_task_attr_t *attr);
FFRT_C_API ffrt_task_handle_t ffrt_submit_h_base(ffrt_function_header_t *f, const ffrt_deps_t *in_deps,
    const ffrt_deps_t *out_deps, const ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_submit_f(ffrt_function_t func, void *arg, const ffrt_deps_t *in_deps,
    const ffrt_deps_t *out_deps, const ffrt_task_attr_t *attr);
FFRT_C_API ffrt_task_handle_t ffrt_submit_h_f(ffrt_function_t func, void *arg, const ffrt_deps_t *in_deps,
    const ffrt_deps_t *out_deps, const ffrt_task_attr_t *attr);

// Handles are reference counted; inc/dec return the count before the change.
FFRT_C_API uint32_t ffrt_task_handle_inc_ref(ffrt_task_handle_t handle);
FFRT_C_API uint32_t ffrt_task_handle_dec_ref(ffrt_task_handle_t handle);
FFRT_C_API void ffrt_task_handle_destroy(ffrt_task_handle_t handle);
FFRT_C_API uint64_t ffrt_task_handle_get_id(ffrt_task_handle_t handle);

// Waits for the tasks named by ffrt_dependence_task items; data items are ignored.
FFRT_C_API void ffrt_wait_deps(const ffrt_deps_t *deps);
// Waits for every task that the calling task (or thread, outside a task) submitted to the pool.
FFRT_C_API void ffrt_wait(void);

FFRT_C_API int ffrt_this_task_update_qos(ffrt_qos_t qos);
FFRT_C_API ffrt_qos_t ffrt_this_task_get_qos(void);
FFRT_C_API uint64_t ffrt_this_task_get_id(void);

#endif // FFRT_API_C_TASK_H
