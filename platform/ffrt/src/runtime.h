#ifndef HOST_FFRT_RUNTIME_H
#define HOST_FFRT_RUNTIME_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "c/task.h"
#include "runtime_task.h"
#include "task_queue.h"

namespace HostFfrt {
// The process-wide task runtime, shaped like the device's: per QoS level at most `workerLimit`
// tasks run at once and at most `threadLimit` worker threads exist (VORN_FFRT_WORKERS and
// VORN_FFRT_THREADS, 8 and 16 by default). A task blocked in a std:: primitive or a system call
// keeps its running slot, as the device cannot see it either. A task waiting on one of the
// runtime's own primitives gives its slot back and its thread is parked outside the worker
// count (on a device it would be a coroutine set aside); once woken it needs a slot again.
// A timer thread holds delayed tasks until they are due, and queues feed tasks to the pool one
// slot at a time. One lock guards all of it; functions of tasks run and are destroyed outside it.
class Runtime {
public:
    static Runtime &Instance();

    Runtime(const Runtime &) = delete;
    Runtime &operator=(const Runtime &) = delete;

    // Takes ownership of `f`. Returns the task with one reference for the caller.
    RuntimeTask *Submit(ffrt_function_header_t *f, const ffrt_task_attr_t *attr, TaskQueue *queue, bool atHead);
    int Cancel(RuntimeTask *task);
    void Wait(RuntimeTask *task);
    void WaitForSubmittedTasks();
    static RuntimeTask *CurrentTask();

    // The calling task gives its running slot back (false outside a task: nothing to give).
    bool LeaveSlot();
    // Blocks until the calling task holds a running slot again.
    void TakeSlot();

    TaskQueue *CreateQueue(const std::string &name, ffrt_qos_t qos, int maxConcurrency);
    void DestroyQueue(TaskQueue *queue);
    uint64_t WaitingTaskCount(TaskQueue *queue);

    bool IsIdle();
    bool WaitIdle(std::chrono::milliseconds timeout);
    size_t WorkerCount();
    size_t PeakWorkerCount();
    size_t RunningCount();
    size_t PeakRunningCount();
    void ResetPeaks();
    size_t WorkerLimit() const { return workerLimit_; }
    size_t ThreadLimit() const { return threadLimit_; }
    void SetQueueSubmitBroken(bool broken) { queueSubmitBroken_.store(broken); }
    bool QueueSubmitBroken() const { return queueSubmitBroken_.load(); }

private:
    using Clock = RuntimeTask::Clock;
    using Lock = std::unique_lock<std::mutex>;

    struct DueOrder {
        bool operator()(const RuntimeTask *lhs, const RuntimeTask *rhs) const
        {
            return lhs->due != rhs->due ? lhs->due < rhs->due : lhs->id < rhs->id;
        }
    };

    // A woken task waiting for a running slot; its thread waits on `granted`.
    struct Resumer {
        std::condition_variable wake;
        bool granted = false;
    };

    // The workers of one QoS level.
    struct WorkerGroup {
        std::deque<RuntimeTask *> ready;
        std::deque<Resumer *> resuming;
        std::condition_variable workAvailable;
        size_t threads = 0; // worker threads alive and not parked under a suspended task
        size_t idle = 0;    // of those, the ones not running a task (including those still starting)
        size_t running = 0; // tasks holding a running slot
    };

    Runtime();

    static size_t GroupIndex(ffrt_qos_t qos);
    void Schedule(RuntimeTask *task, uint64_t delayUs, bool atHead);
    void MakeDue(RuntimeTask *task, bool atHead);
    void Dispatch(TaskQueue &queue);
    void PushToPool(RuntimeTask *task);
    void Grant(WorkerGroup &group);
    bool NeedsRoomForResumer(const WorkerGroup &group) const;
    void Kick(WorkerGroup &group);
    bool SpawnWorker(size_t groupIndex);
    void CountThread(WorkerGroup &group, bool added);
    void EnsureTimer();
    void WorkerMain(size_t groupIndex);
    void RunTask(Lock &lock, WorkerGroup &group, size_t groupIndex);
    static void ReturnFreeMemory();
    void TimerMain();
    bool Withdraw(RuntimeTask *task);
    void DropWithdrawn(Lock &lock, const std::deque<RuntimeTask *> &tasks);
    void Settle(RuntimeTask *task, TaskState state);
    template <typename Pred>
    void WaitSettled(Lock &lock, Pred pred);
    void LeaveSlotLocked(RuntimeTask &task);
    void TakeSlotLocked(Lock &lock, RuntimeTask &task);

    const size_t workerLimit_;
    const size_t threadLimit_;
    const size_t baseWorkers_;
    std::mutex mutex_;
    std::condition_variable timerChanged_;
    std::condition_variable settled_;
    std::vector<WorkerGroup> groups_;
    std::set<RuntimeTask *, DueOrder> timers_;
    std::map<const TaskQueue *, std::unique_ptr<TaskQueue>> queues_;
    size_t threads_ = 0; // over all groups
    size_t peakThreads_ = 0;
    size_t peakRunning_ = 0; // in any one group
    size_t liveTasks_ = 0;   // submitted and not yet settled
    uint64_t nextTaskId_ = 0;
    bool timerStarted_ = false;
    std::atomic<bool> queueSubmitBroken_ {false};
};

// Gives the running task's worker back for the lifetime of the scope, and takes a running slot
// again before the scope ends. Outside a task it does nothing: the thread simply blocks.
class TaskSuspension {
public:
    TaskSuspension();
    ~TaskSuspension();
    TaskSuspension(const TaskSuspension &) = delete;
    TaskSuspension &operator=(const TaskSuspension &) = delete;

private:
    bool suspended_;
};
} // namespace HostFfrt

#endif // HOST_FFRT_RUNTIME_H
