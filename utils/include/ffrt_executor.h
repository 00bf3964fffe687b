#ifndef VORN_UTILS_FFRT_EXECUTOR_H
#define VORN_UTILS_FFRT_EXECUTOR_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "async_task_executor.h"
#include "safe_map.h"

namespace OHOS {
namespace Vorn {
// Runs tasks on the platform task runtime: straight onto its workers (NORMAL_SUBMIT), or one at
// a time through a serial queue of its own with the pending tasks tracked by name (EVENT_HANDLER).
class FFRTExecutor : public AsyncTaskExecutor {
public:
    enum class Mode : int32_t {
        EVENT_HANDLER = 0,
        NORMAL_SUBMIT = 1,
    };

    FFRTExecutor(const std::string &name, Mode mode);
    ~FFRTExecutor() override;

    void PostTaskDelay(std::function<void()> task, const std::string &taskName, long delayMs) override;

    bool PostTaskInner(std::function<void()> task, const std::string &taskName);
    bool PostDelayTaskInner(std::function<void()> task, const std::string &taskName, long delayMs);
    void RunTask(const std::function<void()> &task, const std::string &taskName);

    // Number of queued tasks whose handle is still tracked (always 0 in NORMAL_SUBMIT mode).
    int PendingHandleCount();
    // Tasks posted and not yet started, and tasks started and not yet done (for the dump).
    int64_t TasksWaiting() const;
    int64_t TasksRunning() const;

private:
    // The runtime hands out opaque pointers; these holders release them with the runtime's own
    // destroy functions when the last reference goes.
    using QueueHolder = std::shared_ptr<void>;
    using TaskHandleHolder = std::shared_ptr<void>;
    using TaskHandleMap = SafeMap<std::string, TaskHandleHolder>;
    // Shared with every submitted closure, like the handle map, so a task that outlives its
    // executor still has them to update.
    struct TaskState {
        TaskHandleMap handles;
        std::atomic<int64_t> waiting {0};
        std::atomic<int64_t> running {0};
    };
    class RunningTask;

    // Not named Submit: that would hide AsyncTaskExecutor::Submit from holders of an FFRTExecutor.
    bool Enqueue(std::function<void()> task, const std::string &taskName, bool delayed, long delayMs);
    std::function<void()> MakeClosure(std::function<void()> task, const std::string &taskName) const;
    static void RunAndForget(const std::function<void()> &task, const std::string &taskName, TaskState &state);

    std::string name_;
    Mode mode_;
    QueueHolder queue_;
    std::shared_ptr<TaskState> state_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_FFRT_EXECUTOR_H
