#ifndef HOST_FFRT_RUNTIME_H
#define HOST_FFRT_RUNTIME_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "c/task.h"
#include "runtime_task.h"
#include "task_queue.h"
#include "waiter.h"

namespace HostFfrt {
// The process-wide task runtime, shaped like the device's: per QoS level at most `workerLimit`
// tasks run at once and at most `threadLimit` worker threads exist (VORN_FFRT_WORKERS and
// VORN_FFRT_THREADS, 8 and 16 by default). Every task runs on a fiber of its own. A task blocked
// in a std:: primitive or a system call keeps its worker thread and running slot, as the device
// cannot see it either. A task waiting on one of the runtime's own primitives switches back to
// its worker, which runs other tasks; once woken it queues to resume on any worker of its level
// with a free slot. So threads stay within the limit however many tasks wait.
// A timer thread holds delayed tasks until they are due and ends timed waits, and queues feed
// tasks to the pool one slot at a time. One lock guards all of it; functions of tasks run and
// are destroyed outside it.
class Runtime {
public:
    using Clock = RuntimeTask::Clock;

    static Runtime &Instance();

    Runtime(const Runtime &) = delete;
    Runtime &operator=(const Runtime &) = delete;

    // Takes ownership of `f`. Returns the task with one reference for the caller.
    RuntimeTask *Submit(ffrt_function_header_t *f, const ffrt_task_attr_t *attr, TaskQueue *queue);
    static RuntimeTask *CurrentTask();
    // The running task when it has a fiber to switch out of, else null.
    static RuntimeTask *SuspendableTask();

    // Switches the calling task (waiter's) out until Resume, or until the deadline claims the
    // waiter; releases `guard` on the way. Returns false on time-out.
    bool Suspend(Waiter &waiter, std::unique_lock<std::mutex> *guard, std::optional<Clock::time_point> deadline);
    void Resume(RuntimeTask *task);
    // Lets tasks waiting to resume go first. False outside a task that can switch out.
    bool Yield();

    TaskQueue *CreateQueue(const std::string &name, ffrt_qos_t qos);
    void DestroyQueue(TaskQueue *queue);

    bool IsIdle();
    bool WaitIdle(std::chrono::milliseconds timeout);
    // The pool's counts, taken together under the lock.
    struct Counts {
        size_t workers; // worker threads alive, over all groups
        size_t peakWorkers;
        size_t running; // tasks holding a running slot, over all groups
        size_t peakRunning; // in any one group
        size_t suspended; // switched out in a runtime wait
    };
    Counts Snapshot();
    void ResetPeaks();
    size_t WorkerLimit() const { return workerLimit_; }
    size_t ThreadLimit() const { return threadLimit_; }
    void SetQueueSubmitBroken(bool broken) { queueSubmitBroken_.store(broken); }
    bool QueueSubmitBroken() const { return queueSubmitBroken_.load(); }

private:
    using Lock = std::unique_lock<std::mutex>;

    struct DueOrder {
        bool operator()(const RuntimeTask *lhs, const RuntimeTask *rhs) const
        {
            return lhs->due != rhs->due ? lhs->due < rhs->due : lhs->id < rhs->id;
        }
    };

    // A task waiting in WaitSettled, and what it waits for.
    struct SettleWaiter {
        RuntimeTask *task;
        std::function<bool()> done;
    };

    // The workers of one QoS level.
    struct WorkerGroup {
        std::deque<RuntimeTask *> ready;
        std::deque<RuntimeTask *> resuming; // started tasks ready to go on
        std::condition_variable workAvailable;
        size_t threads = 0; // worker threads alive
        size_t idle = 0; // of those, the ones not running a task (including those still starting)
        size_t running = 0; // tasks holding a running slot
        size_t owedWakes = 0; // workers to wake once the lock is released
    };

    Runtime();

    static size_t GroupIndex(ffrt_qos_t qos);
    void Schedule(RuntimeTask *task, uint64_t delayUs);
    void MakeDue(RuntimeTask *task);
    void Dispatch(TaskQueue &queue);
    void PushToPool(RuntimeTask *task);
    // `looking`: workers of the group about to look for work on their own, not to be woken.
    void Kick(WorkerGroup &group, size_t looking = 0);
    template <typename Change> void ChangeThenWake(Change change);
    bool SpawnWorker(size_t groupIndex);
    void CountThread(WorkerGroup &group, bool added);
    void EnsureTimer();
    void WorkerMain(size_t groupIndex);
    void RunNext(Lock &lock, WorkerGroup &group, size_t groupIndex);
    void SwitchInto(RuntimeTask &task);
    void AfterSwitch(RuntimeTask *task);
    void WakeSettleWaiters();
    static void TaskMain(void *arg);
    void ResumeLocked(RuntimeTask *task);
    void EndDueWaits();
    Clock::time_point NextTimerDue() const;
    void TimerDueAt(Clock::time_point due);
    static void ReturnFreeMemory();
    void TimerMain();
    bool Withdraw(RuntimeTask *task);
    void DropWithdrawn(Lock &lock, const std::deque<RuntimeTask *> &tasks);
    void Settle(RuntimeTask *task, TaskState state);
    template <typename Pred> void WaitSettled(Lock &lock, Pred pred);

    const size_t workerLimit_;
    const size_t threadLimit_;
    const size_t baseWorkers_;
    std::mutex mutex_;
    std::condition_variable timerChanged_;
    std::condition_variable settled_;
    std::vector<WorkerGroup> groups_;
    std::set<RuntimeTask *, DueOrder> timers_;
    std::multimap<Clock::time_point, Waiter *> deadlines_; // timed waits of suspended tasks
    std::vector<SettleWaiter> settleWaiters_;
    std::map<const TaskQueue *, std::unique_ptr<TaskQueue>> queues_;
    size_t threads_ = 0; // over all groups
    size_t peakThreads_ = 0;
    size_t peakRunning_ = 0; // in any one group
    size_t liveTasks_ = 0; // submitted and not yet settled
    size_t suspended_ = 0; // switched out in a runtime wait
    uint64_t nextTaskId_ = 0;
    bool timerStarted_ = false;
    bool wakeLater_ = false; // Kick leaves its wakes to ChangeThenWake
    // When the timer thread wakes on its own; min() while it runs and will look anyway.
    Clock::time_point timerWakesAt_ = Clock::time_point::min();
    std::atomic<bool> queueSubmitBroken_ {false};
};

} // namespace HostFfrt

#endif // HOST_FFRT_RUNTIME_H
