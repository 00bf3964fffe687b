#ifndef FFRT_API_C_TYPE_DEF_H
#define FFRT_API_C_TYPE_DEF_H

#include <errno.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define FFRT_C_API extern "C"
#else
#define FFRT_C_API
#endif

typedef enum {
    ffrt_qos_inherit = -1,
    ffrt_qos_background,
    ffrt_qos_utility,
    ffrt_qos_default,
    ffrt_qos_user_initiated,
    ffrt_qos_deadline_request,
    ffrt_qos_user_interactive,
    ffrt_qos_max = ffrt_qos_user_interactive,
} ffrt_qos_default_t;

typedef int ffrt_qos_t;

typedef void (*ffrt_function_t)(void *);

// Placed first in every function the runtime runs: exec is called once, then destroy.
typedef struct {
    ffrt_function_t exec;
    ffrt_function_t destroy;
    uint64_t reserve[2];
} ffrt_function_header_t;

typedef enum {
    ffrt_task_attr_storage_size = 128,
    ffrt_auto_managed_function_storage_size = 64 + sizeof(ffrt_function_header_t),
    ffrt_mutex_storage_size = 64,
    ffrt_cond_storage_size = 64,
    ffrt_queue_attr_storage_size = 128,
    ffrt_rwlock_storage_size = 64,
#if defined(__aarch64__)
    ffrt_fiber_storage_size = 22,
#elif defined(__arm__)
    ffrt_fiber_storage_size = 64,
#elif defined(__x86_64__)
    ffrt_fiber_storage_size = 8,
#else
#error "unsupported architecture"
#endif
} ffrt_storage_size_t;

typedef enum {
    ffrt_function_kind_general,
    ffrt_function_kind_queue,
} ffrt_function_kind_t;

typedef enum {
    ffrt_dependence_data,
    ffrt_dependence_task,
} ffrt_dependence_type_t;

typedef struct {
    ffrt_dependence_type_t type;
    const void *ptr;
} ffrt_dependence_t;

typedef struct {
    uint32_t len;
    const ffrt_dependence_t *items;
} ffrt_deps_t;

typedef struct {
    uint32_t storage[(ffrt_task_attr_storage_size + sizeof(uint32_t) - 1) / sizeof(uint32_t)];
} ffrt_task_attr_t;

typedef struct {
    uint32_t storage[(ffrt_queue_attr_storage_size + sizeof(uint32_t) - 1) / sizeof(uint32_t)];
} ffrt_queue_attr_t;

typedef void *ffrt_task_handle_t;

typedef struct {
    long storage;
} ffrt_mutexattr_t;

typedef struct {
    uint32_t storage[(ffrt_mutex_storage_size + sizeof(uint32_t) - 1) / sizeof(uint32_t)];
} ffrt_mutex_t;

typedef struct {
    long storage;
} ffrt_condattr_t;

typedef struct {
    uint32_t storage[(ffrt_cond_storage_size + sizeof(uint32_t) - 1) / sizeof(uint32_t)];
} ffrt_cond_t;

typedef enum {
    ffrt_error = -1,
    ffrt_success = 0,
    ffrt_error_nomem = ENOMEM,
    ffrt_error_timedout = ETIMEDOUT,
    ffrt_error_busy = EBUSY,
    ffrt_error_inval = EINVAL,
} ffrt_error_t;

#endif // FFRT_API_C_TYPE_DEF_H
