#ifndef BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_HANDLER_H
#define BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_HANDLER_H

#include <cstdint>
#include <memory>
#include <string>

#include "event_queue.h"
#include "event_runner.h"
#include "inner_event.h"
#include "nocopyable.h"

namespace OHOS {
namespace AppExecFwk {
// Sends task events to a runner, which runs them on its thread. A handler must be owned by a
// std::shared_ptr to send events; delays are in milliseconds.
class EventHandler : public std::enable_shared_from_this<EventHandler> {
public:
    using Priority = EventQueue::Priority;

    explicit EventHandler(const std::shared_ptr<EventRunner> &runner = nullptr);
    virtual ~EventHandler();
    DISALLOW_COPY_AND_MOVE(EventHandler);

    // Takes the event on success. Fails without a runner or when the handler is not shared-owned.
    bool SendEvent(InnerEvent::Pointer &event, int64_t delayTime = 0, Priority priority = Priority::LOW);
    inline bool SendEvent(InnerEvent::Pointer &&event, int64_t delayTime = 0, Priority priority = Priority::LOW)
    {
        return SendEvent(event, delayTime, priority);
    }

    // Removal only touches events not yet handed to the runner.
    void RemoveTask(const std::string &name);

    inline const std::shared_ptr<EventRunner> &GetEventRunner() const { return eventRunner_; }

private:
    std::shared_ptr<EventRunner> eventRunner_;
};
} // namespace AppExecFwk
} // namespace OHOS

#endif // BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_HANDLER_H
