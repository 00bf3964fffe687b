#ifndef BASE_EVENTHANDLER_INTERFACES_INNER_API_INNER_EVENT_H
#define BASE_EVENTHANDLER_INTERFACES_INNER_API_INNER_EVENT_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <variant>

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
        : file_(std::move(file)), line_(line), func_(std::move(func)) {}
};

// One event: either an id with a parameter and an optional shared object, handled by the
// owner's ProcessEvent, or a named task that runs by itself.
class InnerEvent final {
public:
    using Clock = std::chrono::steady_clock;
    using TimePoint = std::chrono::time_point<Clock>;
    using Callback = std::function<void()>;
    using Pointer = std::unique_ptr<InnerEvent, void (*)(InnerEvent *)>;
    using EventId = std::variant<uint32_t, std::string>;

    static Pointer Get(uint32_t innerEventId, int64_t param = 0, const Caller &caller = {});
    static Pointer Get(const Callback &callback, const std::string &name = std::string(), const Caller &caller = {});
    template <typename T>
    static inline Pointer Get(uint32_t innerEventId, const std::shared_ptr<T> &object, int64_t param = 0,
        const Caller &caller = {})
    {
        Pointer event = Get(innerEventId, param, caller);
        event->object_ = object;
        event->objectType_ = &typeid(T);
        return event;
    }
    static Pointer Get();

    uint32_t GetInnerEventId() const { return innerEventId_; }
    int64_t GetParam() const { return param_; }
    const std::string &GetTaskName() const { return taskName_; }
    const Callback &GetTask() const { return taskCallback_; }
    bool HasTask() const { return static_cast<bool>(taskCallback_); }
    const Caller &GetCaller() const { return caller_; }

    // The object stored by Get(id, object), or null when there is none or it has another type.
    template <typename T>
    std::shared_ptr<T> GetSharedObject() const
    {
        if (object_ == nullptr || objectType_ == nullptr || *objectType_ != typeid(T)) {
            return nullptr;
        }
        return std::static_pointer_cast<T>(object_);
    }

    std::shared_ptr<EventHandler> GetOwner() const { return owner_.lock(); }
    // Identifies the owner even after it is gone, so that its leftovers can still be matched.
    const std::weak_ptr<EventHandler> &GetWeakOwner() const { return owner_; }
    void SetOwner(const std::weak_ptr<EventHandler> &owner) { owner_ = owner; }

    const TimePoint &GetHandleTime() const { return handleTime_; }
    void SetHandleTime(const TimePoint &handleTime) { handleTime_ = handleTime; }
    const TimePoint &GetSendTime() const { return sendTime_; }
    void SetSendTime(const TimePoint &sendTime) { sendTime_ = sendTime; }

    // A sync sender waits on the future; it becomes ready when the event was handled or dropped.
    std::future<void> CreateWaiter();
    void NotifyWaiter();

    DISALLOW_COPY_AND_MOVE(InnerEvent);

private:
    InnerEvent() = default;
    ~InnerEvent() = default;
    static Pointer Make(const Caller &caller);
    static void Drop(InnerEvent *event);

    uint32_t innerEventId_ = 0;
    int64_t param_ = 0;
    std::shared_ptr<void> object_;
    const std::type_info *objectType_ = nullptr;
    std::string taskName_;
    Callback taskCallback_;
    std::weak_ptr<EventHandler> owner_;
    TimePoint handleTime_;
    TimePoint sendTime_;
    Caller caller_;
    std::unique_ptr<std::promise<void>> waiter_;
};
} // namespace AppExecFwk
} // namespace OHOS

#endif // BASE_EVENTHANDLER_INTERFACES_INNER_API_INNER_EVENT_H
