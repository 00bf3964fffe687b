#ifndef BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_QUEUE_H
#define BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_QUEUE_H

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "inner_event.h"
#include "nocopyable.h"

namespace OHOS {
namespace AppExecFwk {
// The pending events of one runner. The runner takes the next event among those due: the one
// of highest priority (VIP first), then the earliest due, then the first sent. An event is
// never handed out before its handle time.
class EventQueue final {
public:
    enum class Priority : uint32_t {
        VIP = 0,
        IMMEDIATE,
        HIGH,
        LOW,
        IDLE,
    };

    EventQueue() = default;
    ~EventQueue();
    DISALLOW_COPY_AND_MOVE(EventQueue);

    // Takes the event; a null event is ignored.
    void Insert(InnerEvent::Pointer &event, Priority priority = Priority::LOW);

    // Drop the pending events of one handler (of one name).
    void Remove(const std::weak_ptr<EventHandler> &owner);
    void Remove(const std::weak_ptr<EventHandler> &owner, const std::string &name);
    void RemoveAll();

    // For the runner's loop: blocks until an event is due and hands it out, or returns null once
    // Finish() was called. The event handed out counts as being handled until the next call.
    InnerEvent::Pointer GetEvent();
    // Prepare() readies the queue for a loop; Finish() makes the loop's GetEvent() return null.
    void Prepare();
    void Finish();

private:
    static constexpr size_t PRIORITY_COUNT = static_cast<size_t>(Priority::IDLE) + 1;
    using Key = std::pair<InnerEvent::TimePoint, uint64_t>; // handle time, then send order
    using Level = std::map<Key, InnerEvent::Pointer>;

    void RemoveIf(const std::function<bool(const InnerEvent &)> &match);
    InnerEvent::Pointer TakeDue(InnerEvent::TimePoint now, InnerEvent::TimePoint &nextDue);
    void EndHandling();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::array<Level, PRIORITY_COUNT> levels_;
    uint64_t nextSequence_ = 0;
    bool handling_ = false;
    bool finished_ = false;
};
} // namespace AppExecFwk
} // namespace OHOS

#endif // BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_QUEUE_H
