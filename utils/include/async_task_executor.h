#ifndef VORN_UTILS_ASYNC_TASK_EXECUTOR_H
#define VORN_UTILS_ASYNC_TASK_EXECUTOR_H

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "ffrt_inner.h"

namespace OHOS {
namespace Vorn {
// The one interface through which the service runs asynchronous work.
class AsyncTaskExecutor {
public:
    virtual ~AsyncTaskExecutor() = default;

    // Part of the interface but deliberately a no-op in every executor: all work goes through
    // PostTaskDelay, with a delay of 0 for immediate execution.
    virtual void PostTask(std::function<void()> task, const std::string &taskName)
    {
        (void)task;
        (void)taskName;
    }

    virtual void PostTaskDelay(std::function<void()> task, const std::string &taskName, long delayMs) = 0;

    virtual void RemoveTask(const std::string &taskName) { (void)taskName; }

    // Runs `func` as a named task and hands back the future of its result. Waiting on that future
    // from a task suspends the task and frees its worker for others, the awaited task included.
    // The packaged task is shared so that dropping the future never waits for the task, and a
    // task that throws leaves its exception in the future rather than on the pool thread.
    template <typename F, typename R = std::invoke_result_t<std::decay_t<F>>>
    ffrt::future<R> Submit(F &&func, const std::string &taskName, long delayMs = 0)
    {
        auto task = std::make_shared<ffrt::packaged_task<R()>>(std::forward<F>(func));
        ffrt::future<R> future = task->get_future();
        PostTaskDelay([task]() { (*task)(); }, taskName, delayMs);
        return future;
    }
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_ASYNC_TASK_EXECUTOR_H
