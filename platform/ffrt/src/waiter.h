#ifndef HOST_FFRT_WAITER_H
#define HOST_FFRT_WAITER_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>

namespace HostFfrt {
struct RuntimeTask;

// One wait in one of the runtime's primitives. Inside a task the task is suspended and its
// worker runs other tasks; outside a task (or in a task that could not get a stack of its
// own) the thread blocks. A waiter is woken at most once: by Wake() or by its deadline,
// whichever claims it first.
class Waiter {
public:
    using Clock = std::chrono::steady_clock;

    Waiter();
    Waiter(const Waiter &) = delete;
    Waiter &operator=(const Waiter &) = delete;

    // Releases `guard` (if any; the lock under which the waiter was made findable by its wakers)
    // and waits. Returns true when woken, false when the deadline claimed the waiter first; a
    // waiter that timed out may still be listed wherever it was made findable.
    bool Park(std::unique_lock<std::mutex> *guard, std::optional<Clock::time_point> deadline);
    // Returns false when the waiter was claimed already (it timed out); nothing is woken then.
    bool Wake();

private:
    friend class Runtime;

    bool ParkThread(std::unique_lock<std::mutex> *guard, std::optional<Clock::time_point> deadline);
    bool Claim() { return !claimed_.exchange(true, std::memory_order_acq_rel); }

    RuntimeTask *task_; // null when the thread itself blocks
    std::atomic<bool> claimed_ {false};
    // Task waits: guarded by the runtime's lock.
    bool timedOut_ = false;
    std::multimap<Clock::time_point, Waiter *>::iterator deadlineEntry_;
    bool hasDeadlineEntry_ = false;
    // Thread waits.
    std::mutex mutex_;
    std::condition_variable woken_;
    bool wakeDelivered_ = false;
};
} // namespace HostFfrt

#endif // HOST_FFRT_WAITER_H
