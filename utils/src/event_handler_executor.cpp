#include "event_handler_executor.h"

#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
EventHandlerExecutor::EventHandlerExecutor(bool inNewThread) : inNewThread_(inNewThread)
{
    auto runner = AppExecFwk::EventRunner::Create(inNewThread_, AppExecFwk::Mode::DEFAULT);
    if (runner == nullptr) {
        VORN_COMMON_LOGE("runner is null");
        return;
    }
    if (!inNewThread_) {
        VORN_COMMON_LOGW("EventHandlerExecutor run Manually");
        runner->Run();
    }
    eventHandler_ = std::make_shared<AppExecFwk::EventHandler>(runner);
}

EventHandlerExecutor::~EventHandlerExecutor()
{
    VORN_COMMON_LOGW("~EventHandlerExecutor");
    if (eventHandler_ != nullptr && !inNewThread_) {
        VORN_COMMON_LOGW("EventHandlerExecutor stop Manually");
        eventHandler_->GetEventRunner()->Stop();
    }
    eventHandler_.reset();
}

void EventHandlerExecutor::PostTaskDelay(std::function<void()> task, const std::string &taskName, long delayMs)
{
    if (eventHandler_ == nullptr) {
        VORN_COMMON_LOGW("PostTaskDelay but m_eventHandler is null");
        return;
    }
    eventHandler_->SendEvent(AppExecFwk::InnerEvent::Get(task, taskName), delayMs,
        AppExecFwk::EventQueue::Priority::LOW);
}

void EventHandlerExecutor::RemoveTask(const std::string &taskName)
{
    if (eventHandler_ == nullptr) {
        VORN_COMMON_LOGW("RemoveTask but m_eventHandler is null");
        return;
    }
    eventHandler_->RemoveTask(taskName);
}
} // namespace Vorn
} // namespace OHOS
