#ifndef BASE_EVENTHANDLER_INTERFACES_INNER_API_INNER_EVENT_H
#define BASE_EVENTHANDLER_INTERFACES_INNER_API_INNER_EVENT_H

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "nocopyable.h"

namespace OHOS {
namespace AppExecFwk {
class EventHandler;

// Where an event was made; the defaults capture the caller's own position.
struct Caller {
    std::string file_;
    int line_;
    std::string func_;
    std::string dfxName_;

    Caller(std::string file = __builtin_FILE(), int line = __builtin_LINE(), std::string func = __builtin_FUNCTION())
        : file_(std::move(file)), line_(line), func_(std::move(func))
    {
    }
};

// One event: a named task that the owner's runner runs.
class InnerEvent final {
public:
    using Clock = std::chrono::steady_clock;
    using TimePoint = std::chrono::time_point<Clock>;
    using Callback = std::function<void()>;
    using Pointer = std::unique_ptr<InnerEvent, void (*)(InnerEvent *)>;

    static Pointer Get(const Callback &callback, const std::string &name = std::string(), const Caller &caller = {});

    const std::string &GetTaskName() const { return taskName_; }
    const Callback &GetTask() const { return taskCallback_; }

    std::shared_ptr<EventHandler> GetOwner() const { return owner_.lock(); }
    // Identifies the owner even after it is gone, so that its leftovers can still be matched.
    const std::weak_ptr<EventHandler> &GetWeakOwner() const { return owner_; }
    void SetOwner(const std::weak_ptr<EventHandler> &owner) { owner_ = owner; }

    const TimePoint &GetHandleTime() const { return handleTime_; }
    void SetHandleTime(const TimePoint &handleTime) { handleTime_ = handleTime; }

    DISALLOW_COPY_AND_MOVE(InnerEvent);

private:
    InnerEvent() = default;
    ~InnerEvent() = default;
    static void Drop(InnerEvent *event);

    std::string taskName_;
    Callback taskCallback_;
    std::weak_ptr<EventHandler> owner_;
    TimePoint handleTime_;
    Caller caller_;
};
} // namespace AppExecFwk
} // namespace OHOS

#endif // BASE_EVENTHANDLER_INTERFACES_INNER_API_INNER_EVENT_H
