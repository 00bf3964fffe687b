#include "event_handler.h"

#include <algorithm>

namespace OHOS {
namespace AppExecFwk {
namespace {
// Longer delays are cut to this (about a century), which keeps the handle time clear of clock
// overflow; such an event never comes due in practice.
constexpr int64_t MAX_DELAY_MS = 100LL * 365 * 24 * 3600 * 1000;
} // namespace

EventHandler::EventHandler(const std::shared_ptr<EventRunner> &runner) : eventRunner_(runner) {}

EventHandler::~EventHandler()
{
    // Events left behind could never be handled; drop them so the runner does not wait for them.
    if (eventRunner_ != nullptr) {
        eventRunner_->GetEventQueue()->Remove(weak_from_this());
    }
}

bool EventHandler::SendEvent(InnerEvent::Pointer &event, int64_t delayTime, Priority priority)
{
    std::weak_ptr<EventHandler> self = weak_from_this();
    if (event == nullptr || eventRunner_ == nullptr || self.expired()) {
        return false;
    }
    InnerEvent::TimePoint now = InnerEvent::Clock::now();
    event->SetHandleTime(now + std::chrono::milliseconds(std::clamp<int64_t>(delayTime, 0, MAX_DELAY_MS)));
    event->SetOwner(self);
    eventRunner_->GetEventQueue()->Insert(event, priority);
    return true;
}

void EventHandler::RemoveTask(const std::string &name)
{
    if (eventRunner_ != nullptr) {
        eventRunner_->GetEventQueue()->Remove(weak_from_this(), name);
    }
}
} // namespace AppExecFwk
} // namespace OHOS
