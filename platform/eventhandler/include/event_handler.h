#ifndef BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_HANDLER_H
#define BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_HANDLER_H

#include <cstdint>
#include <memory>
#include <string>

#include "event_handler_errors.h"
#include "event_queue.h"
#include "event_runner.h"
#include "inner_event.h"
#include "nocopyable.h"

namespace OHOS {
namespace AppExecFwk {
// Sends events to a runner and handles them there. A handler must be owned by a
// std::shared_ptr to send events; delays are in milliseconds.
class EventHandler : public std::enable_shared_from_this<EventHandler> {
public:
    using Callback = InnerEvent::Callback;
    using Priority = EventQueue::Priority;

    explicit EventHandler(const std::shared_ptr<EventRunner> &runner = nullptr);
    virtual ~EventHandler();
    DISALLOW_COPY_AND_MOVE(EventHandler);

    // The handler whose event is being handled on the calling thread, or null.
    static std::shared_ptr<EventHandler> Current();

    // Takes the event on success. Fails without a runner or when the handler is not shared-owned.
    bool SendEvent(InnerEvent::Pointer &event, int64_t delayTime = 0, Priority priority = Priority::LOW);
    inline bool SendEvent(InnerEvent::Pointer &event, Priority priority) { return SendEvent(event, 0, priority); }
    inline bool SendEvent(InnerEvent::Pointer &&event, int64_t delayTime = 0, Priority priority = Priority::LOW)
    {
        return SendEvent(event, delayTime, priority);
    }
    inline bool SendEvent(uint32_t innerEventId, int64_t param, int64_t delayTime, const Caller &caller = {})
    {
        return SendEvent(InnerEvent::Get(innerEventId, param, caller), delayTime);
    }
    inline bool SendEvent(uint32_t innerEventId, int64_t delayTime = 0, Priority priority = Priority::LOW,
        const Caller &caller = {})
    {
        return SendEvent(InnerEvent::Get(innerEventId, 0, caller), delayTime, priority);
    }
    inline bool SendEvent(uint32_t innerEventId, Priority priority, const Caller &caller = {})
    {
        return SendEvent(InnerEvent::Get(innerEventId, 0, caller), 0, priority);
    }
    template <typename T>
    inline bool SendEvent(uint32_t innerEventId, const std::shared_ptr<T> &object, int64_t delayTime = 0,
        const Caller &caller = {})
    {
        return SendEvent(InnerEvent::Get(innerEventId, object, 0, caller), delayTime);
    }
    inline bool SendImmediateEvent(InnerEvent::Pointer &event) { return SendEvent(event, 0, Priority::IMMEDIATE); }
    inline bool SendHighPriorityEvent(InnerEvent::Pointer &event, int64_t delayTime = 0)
    {
        return SendEvent(event, delayTime, Priority::HIGH);
    }
    // Returns once the event was handled (at once when called on the runner's own thread).
    bool SendSyncEvent(InnerEvent::Pointer &event, Priority priority = Priority::LOW);
    // `taskTime` is a point on the steady clock in milliseconds; a past one is sent at once.
    bool SendTimingEvent(InnerEvent::Pointer &event, int64_t taskTime, Priority priority = Priority::LOW);

    inline bool PostTask(const Callback &callback, const std::string &name = std::string(), int64_t delayTime = 0,
        Priority priority = Priority::LOW, const Caller &caller = {})
    {
        return SendEvent(InnerEvent::Get(callback, name, caller), delayTime, priority);
    }
    inline bool PostTask(const Callback &callback, Priority priority, const Caller &caller = {})
    {
        return PostTask(callback, std::string(), 0, priority, caller);
    }
    inline bool PostTask(const Callback &callback, int64_t delayTime, Priority priority = Priority::LOW,
        const Caller &caller = {})
    {
        return PostTask(callback, std::string(), delayTime, priority, caller);
    }
    inline bool PostImmediateTask(const Callback &callback, const std::string &name = std::string(),
        const Caller &caller = {})
    {
        return PostTask(callback, name, 0, Priority::IMMEDIATE, caller);
    }
    inline bool PostHighPriorityTask(const Callback &callback, const std::string &name = std::string(),
        int64_t delayTime = 0, const Caller &caller = {})
    {
        return PostTask(callback, name, delayTime, Priority::HIGH, caller);
    }
    inline bool PostIdleTask(const Callback &callback, const std::string &name = std::string(), int64_t delayTime = 0,
        const Caller &caller = {})
    {
        return PostTask(callback, name, delayTime, Priority::IDLE, caller);
    }
    inline bool PostSyncTask(const Callback &callback, Priority priority = Priority::LOW, const Caller &caller = {})
    {
        InnerEvent::Pointer event = InnerEvent::Get(callback, std::string(), caller);
        return SendSyncEvent(event, priority);
    }

    // Removal only touches events not yet handed to the runner.
    void RemoveAllEvents();
    void RemoveEvent(uint32_t innerEventId);
    void RemoveEvent(uint32_t innerEventId, int64_t param);
    void RemoveTask(const std::string &name);
    // ERR_OK when something was removed, ERR_NAME_NOT_FOUND when nothing of that name was pending.
    int RemoveTaskWithRet(const std::string &name);

    // Events still pending on a previous, different runner are dropped.
    void SetEventRunner(const std::shared_ptr<EventRunner> &runner);
    inline const std::shared_ptr<EventRunner> &GetEventRunner() const { return eventRunner_; }

    // Runs a task event, or passes an id event to ProcessEvent.
    void DistributeEvent(const InnerEvent::Pointer &event);
    bool HasInnerEvent(uint32_t innerEventId);
    // True when the runner handles no event and none is due.
    bool IsIdle();

protected:
    virtual void ProcessEvent(const InnerEvent::Pointer &event);

private:
    std::shared_ptr<EventRunner> eventRunner_;
};
} // namespace AppExecFwk
} // namespace OHOS

#endif // BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_HANDLER_H
