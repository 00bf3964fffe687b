#include "event_handler.h"

#include <algorithm>
#include <utility>

namespace OHOS {
namespace AppExecFwk {
namespace {
// Longer delays are cut to this (about a century), which keeps the handle time clear of clock
// overflow; such an event never comes due in practice.
constexpr int64_t MAX_DELAY_MS = 100LL * 365 * 24 * 3600 * 1000;

thread_local std::weak_ptr<EventHandler> g_currentHandler;
} // namespace

EventHandler::EventHandler(const std::shared_ptr<EventRunner> &runner) : eventRunner_(runner)
{
}

EventHandler::~EventHandler()
{
    // Events left behind could never be handled; drop them so the runner does not wait for them.
    if (eventRunner_ != nullptr) {
        eventRunner_->GetEventQueue()->Remove(weak_from_this());
    }
}

std::shared_ptr<EventHandler> EventHandler::Current()
{
    return g_currentHandler.lock();
}

bool EventHandler::SendEvent(InnerEvent::Pointer &event, int64_t delayTime, Priority priority)
{
    std::weak_ptr<EventHandler> self = weak_from_this();
    if (event == nullptr || eventRunner_ == nullptr || self.expired()) {
        return false;
    }
    InnerEvent::TimePoint now = InnerEvent::Clock::now();
    event->SetSendTime(now);
    event->SetHandleTime(now + std::chrono::milliseconds(std::clamp<int64_t>(delayTime, 0, MAX_DELAY_MS)));
    event->SetOwner(self);
    eventRunner_->GetEventQueue()->Insert(event, priority);
    return true;
}

bool EventHandler::SendSyncEvent(InnerEvent::Pointer &event, Priority priority)
{
    if (event == nullptr || eventRunner_ == nullptr) {
        return false;
    }
    if (eventRunner_->IsCurrentRunnerThread()) {
        DistributeEvent(event);
        return true;
    }
    std::future<void> handled = event->CreateWaiter();
    if (!SendEvent(event, 0, priority)) {
        return false;
    }
    handled.wait();
    return true;
}

bool EventHandler::SendTimingEvent(InnerEvent::Pointer &event, int64_t taskTime, Priority priority)
{
    int64_t nowMs = std::chrono::duration_cast<std::chrono::milliseconds>(
        InnerEvent::Clock::now().time_since_epoch()).count();
    return SendEvent(event, std::max<int64_t>(taskTime - nowMs, 0), priority);
}

void EventHandler::RemoveAllEvents()
{
    if (eventRunner_ != nullptr) {
        eventRunner_->GetEventQueue()->Remove(weak_from_this());
    }
}

void EventHandler::RemoveEvent(uint32_t innerEventId)
{
    if (eventRunner_ != nullptr) {
        eventRunner_->GetEventQueue()->Remove(weak_from_this(), innerEventId);
    }
}

void EventHandler::RemoveEvent(uint32_t innerEventId, int64_t param)
{
    if (eventRunner_ != nullptr) {
        eventRunner_->GetEventQueue()->Remove(weak_from_this(), innerEventId, param);
    }
}

void EventHandler::RemoveTask(const std::string &name)
{
    RemoveTaskWithRet(name);
}

int EventHandler::RemoveTaskWithRet(const std::string &name)
{
    if (eventRunner_ == nullptr) {
        return EVENT_HANDLER_ERR_NO_EVENT_RUNNER;
    }
    return eventRunner_->GetEventQueue()->Remove(weak_from_this(), name) > 0 ? ERR_OK : ERR_NAME_NOT_FOUND;
}

void EventHandler::SetEventRunner(const std::shared_ptr<EventRunner> &runner)
{
    if (runner == eventRunner_) {
        return;
    }
    RemoveAllEvents();
    eventRunner_ = runner;
}

void EventHandler::DistributeEvent(const InnerEvent::Pointer &event)
{
    if (event == nullptr) {
        return;
    }
    std::weak_ptr<EventHandler> outer = std::exchange(g_currentHandler, weak_from_this());
    if (event->HasTask()) {
        event->GetTask()();
    } else {
        ProcessEvent(event);
    }
    g_currentHandler = std::move(outer);
    event->NotifyWaiter();
}

bool EventHandler::HasInnerEvent(uint32_t innerEventId)
{
    return eventRunner_ != nullptr && eventRunner_->GetEventQueue()->HasInnerEvent(weak_from_this(), innerEventId);
}

bool EventHandler::IsIdle()
{
    return eventRunner_ == nullptr || eventRunner_->GetEventQueue()->IsIdle();
}

void EventHandler::ProcessEvent(const InnerEvent::Pointer &)
{
}
} // namespace AppExecFwk
} // namespace OHOS
