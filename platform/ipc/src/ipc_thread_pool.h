#ifndef OHOS_IPC_IPC_THREAD_POOL_H
#define OHOS_IPC_IPC_THREAD_POOL_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace OHOS {
// The threads a callee process handles its transactions on, as a device process has a bounded
// IPC thread pool. A thread that finished its work takes the next or waits a while for more,
// so a busy process does not pay for a new thread per transaction. Beyond MAX_THREADS work
// queues for the next free thread; work that waited STUCK_GRACE gets a thread of its own, so
// callees stuck in their transactions delay others by that much at most, never hold them.
class IpcThreadPool {
public:
    static constexpr size_t MAX_THREADS = 16;
    static constexpr std::chrono::seconds IDLE_TIME {5};
    static constexpr std::chrono::milliseconds STUCK_GRACE {100};

    static IpcThreadPool &Get();

    // Runs `work` on a pool thread; false when it needed a new thread and none could be started.
    bool Run(std::function<void()> work);

private:
    using Clock = std::chrono::steady_clock;
    struct Pending {
        std::function<void()> work;
        Clock::time_point queuedAt;
    };

    IpcThreadPool() = default;
    // Starts a thread that runs `work` first, if any; false when none could be started.
    bool Start(std::function<void()> work);
    void Serve(std::function<void()> work);
    // The next queued work, waiting for it while idle; empty once the thread should end.
    std::function<void()> NextWork();
    // While work is queued: starts a thread for work queued longer than STUCK_GRACE.
    void Watch();

    std::mutex mutex_;
    std::condition_variable workArrived_;
    // Never notified: the watch only sleeps until the oldest work's grace ends, then looks again.
    std::condition_variable watchTimer_;
    std::deque<Pending> pending_;
    size_t threads_ = 0; // serving threads, the watch not included
    size_t idle_ = 0;
    bool watching_ = false;
};
} // namespace OHOS

#endif // OHOS_IPC_IPC_THREAD_POOL_H
