#ifndef FFRT_API_C_TASK_H
#define FFRT_API_C_TASK_H

#include "c/type_def.h"

// Task attributes live in caller-provided opaque storage: init before use, destroy after.
// Names only label tasks in the device's traces; the host keeps none.
FFRT_C_API int ffrt_task_attr_init(ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_task_attr_set_name(ffrt_task_attr_t *attr, const char *name);
FFRT_C_API void ffrt_task_attr_destroy(ffrt_task_attr_t *attr);
FFRT_C_API void ffrt_task_attr_set_delay(ffrt_task_attr_t *attr, uint64_t delay_us);

// Storage of ffrt_auto_managed_function_storage_size bytes for a function header and its
// payload; the runtime frees it after calling destroy. NULL when memory is exhausted.
FFRT_C_API void *ffrt_alloc_auto_managed_function_storage_base(ffrt_function_kind_t kind);

// Dependencies are not modelled on the host: in_deps and out_deps are ignored.
FFRT_C_API void ffrt_submit_base(ffrt_function_header_t *f, const ffrt_deps_t *in_deps, const ffrt_deps_t *out_deps,
    const ffrt_task_attr_t *attr);

// Drops the caller's reference to the task.
FFRT_C_API void ffrt_task_handle_destroy(ffrt_task_handle_t handle);

#endif // FFRT_API_C_TASK_H
