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

#include "c/task.h"
#include "runtime_task.h"
#include "task_queue.h"

namespace HostFfrt {
// The process-wide task runtime: a worker pool that grows whenever every worker is busy (so a
// task blocked on work it submitted itself never starves it), a timer thread that holds delayed
// tasks until they are due, and the queues that feed tasks to the pool one slot at a time.
// One lock guards all of it; functions of tasks are run and destroyed outside the lock.
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

    TaskQueue *CreateQueue(const std::string &name, ffrt_qos_t qos, int maxConcurrency);
    void DestroyQueue(TaskQueue *queue);
    uint64_t WaitingTaskCount(TaskQueue *queue);

    bool IsIdle();
    bool WaitIdle(std::chrono::milliseconds timeout);
    size_t WorkerCount();
    size_t PeakWorkerCount();
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

    Runtime();

    void Schedule(RuntimeTask *task, uint64_t delayUs, bool atHead);
    void MakeDue(RuntimeTask *task, bool atHead);
    void Dispatch(TaskQueue &queue);
    void PushToPool(RuntimeTask *task);
    void SpawnWorker();
    void EnsureTimer();
    void WorkerMain();
    static void ReturnFreeMemory();
    void TimerMain();
    bool Withdraw(RuntimeTask *task);
    void DropWithdrawn(Lock &lock, const std::deque<RuntimeTask *> &tasks);
    void Settle(RuntimeTask *task, TaskState state);

    const size_t baseWorkers_;
    std::mutex mutex_;
    std::condition_variable workAvailable_;
    std::condition_variable timerChanged_;
    std::condition_variable settled_;
    std::deque<RuntimeTask *> ready_;
    std::set<RuntimeTask *, DueOrder> timers_;
    std::map<const TaskQueue *, std::unique_ptr<TaskQueue>> queues_;
    size_t workers_ = 0;
    size_t idleWorkers_ = 0; // alive and not running a task, including those still starting
    size_t peakWorkers_ = 0;
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
