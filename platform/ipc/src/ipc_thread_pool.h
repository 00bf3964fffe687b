#ifndef OHOS_IPC_IPC_THREAD_POOL_H
#define OHOS_IPC_IPC_THREAD_POOL_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace OHOS {
// The threads a callee process handles its transactions on. A thread that finished its work
// waits a while for more before it ends, so a busy process does not pay for a new thread per
// transaction. Work never queues behind busy threads: it goes to an idle thread of its own, or
// to a new one, so a callee stuck in one transaction never holds up another.
class IpcThreadPool {
public:
    // Idle threads kept at most, as many as a device process's IPC thread pool has.
    static constexpr size_t MAX_IDLE_THREADS = 16;
    static constexpr std::chrono::seconds IDLE_TIME{5};

    static IpcThreadPool &Get();

    // Runs `work` on an idle thread or a new one; false when no thread could be started.
    bool Run(std::function<void()> work);

private:
    IpcThreadPool() = default;
    void Serve(std::function<void()> work);
    // Waits for the next piece of work; empty once the thread should end.
    std::function<void()> NextWork();

    std::mutex mutex_;
    std::condition_variable workArrived_;
    // Never longer than idle_: each piece of work here has an idle thread that will take it.
    std::deque<std::function<void()>> pending_;
    size_t idle_ = 0;
};
} // namespace OHOS

#endif // OHOS_IPC_IPC_THREAD_POOL_H
