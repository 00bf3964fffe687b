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
};

// The runtime sees only the header; the callable sits right behind it in the same storage.
template <class T> struct function {
    ffrt_function_header_t header;
    T closure;
};

template <class T> void exec_function_wrapper(void *storage)
{
    static_cast<function<T> *>(storage)->closure();
}

template <class T> void destroy_function_wrapper(void *storage)
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
    auto *wrapper =
        new (storage) Wrapper {{exec_function_wrapper<Callable>, destroy_function_wrapper<Callable>, {0, 0}},
            Callable(std::forward<F>(func))};
    return &wrapper->header;
}

inline void submit(std::function<void()> &&func, const task_attr &attr = {})
{
    ffrt_submit_base(create_function_wrapper(std::move(func)), nullptr, nullptr, &attr);
}
} // namespace ffrt

#endif // FFRT_API_CPP_TASK_H
