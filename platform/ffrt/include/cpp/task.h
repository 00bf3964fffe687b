#ifndef FFRT_API_CPP_TASK_H
#define FFRT_API_CPP_TASK_H

#include <cstddef>
#include <functional>
#include <new>
#include <type_traits>
#include <utility>

#include "c/task.h"

namespace ffrt {
class task_attr : public ffrt_task_attr_t {
public:
    task_attr(const char *func = __builtin_FUNCTION())
    {
        ffrt_task_attr_init(this);
        ffrt_task_attr_set_name(this, func);
    }
    ~task_attr() { ffrt_task_attr_destroy(this); }
    task_attr(const task_attr &) = delete;
    task_attr &operator=(const task_attr &) = delete;

    task_attr &name(const char *name)
    {
        ffrt_task_attr_set_name(this, name);
        return *this;
    }
    const char *name() const { return ffrt_task_attr_get_name(this); }
    task_attr &qos(int value)
    {
        ffrt_task_attr_set_qos(this, value);
        return *this;
    }
    int qos() const { return ffrt_task_attr_get_qos(this); }
    task_attr &delay(uint64_t delayUs)
    {
        ffrt_task_attr_set_delay(this, delayUs);
        return *this;
    }
    uint64_t delay() const { return ffrt_task_attr_get_delay(this); }
    task_attr &priority(ffrt_queue_priority_t priority)
    {
        ffrt_task_attr_set_queue_priority(this, priority);
        return *this;
    }
    ffrt_queue_priority_t priority() const { return ffrt_task_attr_get_queue_priority(this); }
    task_attr &stack_size(uint64_t size)
    {
        ffrt_task_attr_set_stack_size(this, size);
        return *this;
    }
    uint64_t stack_size() const { return ffrt_task_attr_get_stack_size(this); }
    task_attr &timeout(uint64_t timeoutUs)
    {
        ffrt_task_attr_set_timeout(this, timeoutUs);
        return *this;
    }
    uint64_t timeout() const { return ffrt_task_attr_get_timeout(this); }
};

// Owns one reference to a task; the default-constructed handle refers to no task.
class task_handle {
public:
    task_handle() = default;
    explicit task_handle(ffrt_task_handle_t handle) : handle_(handle) {}
    ~task_handle() { Release(); }
    task_handle(const task_handle &) = delete;
    task_handle &operator=(const task_handle &) = delete;
    task_handle(task_handle &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    task_handle &operator=(task_handle &&other) noexcept
    {
        if (this != &other) {
            Release();
            handle_ = std::exchange(other.handle_, nullptr);
        }
        return *this;
    }

    uint64_t get_id() const { return handle_ == nullptr ? 0 : ffrt_task_handle_get_id(handle_); }
    operator void *() const { return handle_; }

private:
    void Release()
    {
        if (handle_ != nullptr) {
            ffrt_task_handle_dec_ref(handle_);
            handle_ = nullptr;
        }
    }

    ffrt_task_handle_t handle_ = nullptr;
};

// The runtime sees only the header; the callable sits right behind it in the same storage.
template <class T>
struct function {
    ffrt_function_header_t header;
    T closure;
};

template <class T>
void exec_function_wrapper(void *storage)
{
    static_cast<function<T> *>(storage)->closure();
}

template <class T>
void destroy_function_wrapper(void *storage)
{
    static_cast<function<T> *>(storage)->~function<T>();
}

template <class F>
ffrt_function_header_t *create_function_wrapper(F &&func, ffrt_function_kind_t kind = ffrt_function_kind_general)
{
    using Callable = std::decay_t<F>;
    using Wrapper = function<Callable>;
    static_assert(sizeof(Wrapper) <= ffrt_auto_managed_function_storage_size,
        "the callable does not fit into the runtime's function storage");
    static_assert(alignof(Wrapper) <= alignof(std::max_align_t), "the callable is over-aligned");
    void *storage = ffrt_alloc_auto_managed_function_storage_base(kind);
    if (storage == nullptr) {
        throw std::bad_alloc();
    }
    auto *wrapper = new (storage) Wrapper{{exec_function_wrapper<Callable>, destroy_function_wrapper<Callable>, {0, 0}},
        Callable(std::forward<F>(func))};
    return &wrapper->header;
}

inline void submit(std::function<void()> &&func, const task_attr &attr = {})
{
    ffrt_submit_base(create_function_wrapper(std::move(func)), nullptr, nullptr, &attr);
}

inline void submit(const std::function<void()> &func, const task_attr &attr = {})
{
    ffrt_submit_base(create_function_wrapper(func), nullptr, nullptr, &attr);
}

inline task_handle submit_h(std::function<void()> &&func, const task_attr &attr = {})
{
    return task_handle(ffrt_submit_h_base(create_function_wrapper(std::move(func)), nullptr, nullptr, &attr));
}

inline task_handle submit_h(const std::function<void()> &func, const task_attr &attr = {})
{
    return task_handle(ffrt_submit_h_base(create_function_wrapper(func), nullptr, nullptr, &attr));
}

inline void wait()
{
    ffrt_wait();
}

namespace this_task {
inline uint64_t get_id()
{
    return ffrt_this_task_get_id();
}
} // namespace this_task
} // namespace ffrt

#endif // FFRT_API_CPP_TASK_H
