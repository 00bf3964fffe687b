#ifndef FFRT_API_CPP_QUEUE_H
#define FFRT_API_CPP_QUEUE_H

#include <functional>

#include "c/queue.h"
#include "cpp/task.h"

namespace ffrt {
enum queue_type {
    queue_serial = ffrt_queue_serial,
    queue_concurrent = ffrt_queue_concurrent,
    queue_max = ffrt_queue_max,
};

class queue_attr : public ffrt_queue_attr_t {
public:
    queue_attr() { ffrt_queue_attr_init(this); }
    ~queue_attr() { ffrt_queue_attr_destroy(this); }
    queue_attr(const queue_attr &) = delete;
    queue_attr &operator=(const queue_attr &) = delete;

    queue_attr &qos(int value)
    {
        ffrt_queue_attr_set_qos(this, value);
        return *this;
    }
    int qos() const { return ffrt_queue_attr_get_qos(this); }
    queue_attr &timeout(uint64_t timeoutUs)
    {
        ffrt_queue_attr_set_timeout(this, timeoutUs);
        return *this;
    }
    uint64_t timeout() const { return ffrt_queue_attr_get_timeout(this); }
    queue_attr &max_concurrency(int maxConcurrency)
    {
        ffrt_queue_attr_set_max_concurrency(this, maxConcurrency);
        return *this;
    }
    int max_concurrency() const { return ffrt_queue_attr_get_max_concurrency(this); }
};

class queue {
public:
    explicit queue(const char *name, const queue_attr &attr = {})
        : queue_(ffrt_queue_create(ffrt_queue_serial, name, &attr)) {}
    queue(queue_type type, const char *name, const queue_attr &attr = {})
        : queue_(ffrt_queue_create(static_cast<ffrt_queue_type_t>(type), name, &attr)) {}
    ~queue() { ffrt_queue_destroy(queue_); }
    queue(const queue &) = delete;
    queue &operator=(const queue &) = delete;

    void submit(std::function<void()> func, const task_attr &attr = {})
    {
        ffrt_queue_submit(queue_, create_function_wrapper(std::move(func), ffrt_function_kind_queue), &attr);
    }
    task_handle submit_h(std::function<void()> func, const task_attr &attr = {})
    {
        return task_handle(
            ffrt_queue_submit_h(queue_, create_function_wrapper(std::move(func), ffrt_function_kind_queue), &attr));
    }
    int cancel(const task_handle &handle) { return ffrt_queue_cancel(handle); }
    void wait(const task_handle &handle) { ffrt_queue_wait(handle); }
    uint64_t get_task_cnt() { return ffrt_queue_get_task_cnt(queue_); }

private:
    ffrt_queue_t queue_;
};
} // namespace ffrt

#endif // FFRT_API_CPP_QUEUE_H
