#ifndef BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_RUNNER_H
#define BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_RUNNER_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
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

// Handles the events of its queue one at a time. A runner made with a new thread (or with a
// name) owns that thread, which ends when the last reference to the runner goes; Run() and
// Stop() are refused for it. A runner made with Create(false) is driven by whichever thread
// calls Run(), which handles events until Stop().
class EventRunner final {
public:
    // The overloads of the 5.0 release: later releases add ThreadMode overloads and a lock
    // type, which code built for 5.0 cannot name.
    static std::shared_ptr<EventRunner> Create(bool inNewThread = true, Mode mode = Mode::DEFAULT);
    static std::shared_ptr<EventRunner> Create(const std::string &threadName, Mode mode = Mode::DEFAULT);
    static inline std::shared_ptr<EventRunner> Create(const char *threadName, Mode mode = Mode::DEFAULT)
    {
        return Create(std::string(threadName == nullptr ? "" : threadName), mode);
    }

    // The runner whose loop runs on the calling thread, or null.
    static std::shared_ptr<EventRunner> Current();
    // A process-wide runner driven by whoever calls its Run(), normally the main thread.
    static std::shared_ptr<EventRunner> GetMainEventRunner();

    ErrCode Run();
    ErrCode Stop();

    std::string GetRunnerThreadName() const { return threadName_; }
    // Id of the thread running the loop; 0 for a caller-driven runner that is not running.
    uint64_t GetThreadId();
    bool IsCurrentRunnerThread();
    inline const std::shared_ptr<EventQueue> &GetEventQueue() const { return queue_; }

    EventRunner() = delete;
    ~EventRunner();
    DISALLOW_COPY_AND_MOVE(EventRunner);

private:
    EventRunner(bool deposit, std::string threadName);
    static std::shared_ptr<EventRunner> CreateRunner(bool deposit, std::string threadName);
    void StartThread();

    const bool deposit_;
    const std::string threadName_;
    const std::shared_ptr<EventQueue> queue_ = std::make_shared<EventQueue>();
    std::weak_ptr<EventRunner> self_;
    std::thread thread_;
    std::mutex mutex_;
    std::thread::id loopThread_;
    bool running_ = false;
};
} // namespace AppExecFwk

namespace EventHandling = AppExecFwk;
} // namespace OHOS

#endif // BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_RUNNER_H
