#ifndef BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_RUNNER_H
#define BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_RUNNER_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

#include "errors.h"
#include "event_handler_errors.h"
#include "event_queue.h"
#include "nocopyable.h"

namespace OHOS {
namespace AppExecFwk {
// NO_WAIT is accepted and behaves like DEFAULT on the host.
enum class Mode : uint32_t {
    DEFAULT = 0,
    NO_WAIT,
};

// Handles the events of its queue one at a time. A runner made with a new thread owns that
// thread, which ends when the last reference to the runner goes; Run() and Stop() are refused
// for it. A runner made with Create(false) is driven by whichever thread calls Run(), which
// handles events until Stop().
class EventRunner final {
public:
    // The overloads of the 5.0 release: later releases add ThreadMode overloads and a lock
    // type, which code built for 5.0 cannot name.
    static std::shared_ptr<EventRunner> Create(bool inNewThread = true, Mode mode = Mode::DEFAULT);

    ErrCode Run();
    ErrCode Stop();

    inline const std::shared_ptr<EventQueue> &GetEventQueue() const { return queue_; }

    EventRunner() = delete;
    ~EventRunner();
    DISALLOW_COPY_AND_MOVE(EventRunner);

private:
    explicit EventRunner(bool deposit);
    void StartThread();

    const bool deposit_;
    const std::shared_ptr<EventQueue> queue_ = std::make_shared<EventQueue>();
    std::thread thread_;
    std::mutex mutex_;
    bool running_ = false;
};
} // namespace AppExecFwk

namespace EventHandling = AppExecFwk;
} // namespace OHOS

#endif // BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_RUNNER_H
