#ifndef VORN_UTILS_EVENT_HANDLER_EXECUTOR_H
#define VORN_UTILS_EVENT_HANDLER_EXECUTOR_H

#include <functional>
#include <memory>
#include <string>

#include "async_task_executor.h"
#include "event_handler.h"

namespace OHOS {
namespace Vorn {
// Runs named tasks one at a time on a private event-runner thread; pending tasks can be removed
// by name.
class EventHandlerExecutor : public AsyncTaskExecutor {
public:
    // With inNewThread false the runner is driven by the constructing thread: the constructor
    // then blocks in the runner's loop until the runner is stopped.
    explicit EventHandlerExecutor(bool inNewThread);
    ~EventHandlerExecutor() override;

    void PostTaskDelay(std::function<void()> task, const std::string &taskName, long delayMs) override;
    void RemoveTask(const std::string &taskName) override;

private:
    std::shared_ptr<AppExecFwk::EventHandler> eventHandler_;
    bool inNewThread_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_EVENT_HANDLER_EXECUTOR_H
