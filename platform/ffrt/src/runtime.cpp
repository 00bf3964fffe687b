#include "runtime.h"

#include <algorithm>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <system_error>
#include <thread>
#include <utility>

#include "attr_storage.h"
#include "function_storage.h"

namespace HostFfrt {
namespace {
constexpr size_t MAX_WORKERS = 512;
// Workers beyond the base set leave after this long without work.
constexpr std::chrono::seconds WORKER_IDLE_TIMEOUT {3};
constexpr std::chrono::milliseconds TRIM_DELAY {500};
// Longer delays are cut to this, which keeps the due time clear of clock overflow; in practice
// such a task never runs.
constexpr uint64_t MAX_DELAY_US = 100ULL * 365 * 24 * 3600 * 1000 * 1000;

thread_local RuntimeTask *g_currentTask = nullptr;
// Children of the running task (or, outside tasks, of the thread) that ffrt_wait waits for.
thread_local std::shared_ptr<WaitGroup> g_waitGroup;

std::shared_ptr<WaitGroup> CurrentWaitGroup()
{
    if (g_waitGroup == nullptr) {
        g_waitGroup = std::make_shared<WaitGroup>();
    }
    return g_waitGroup;
}

void RunOnThisThread(RuntimeTask *task)
{
    RuntimeTask *outerTask = std::exchange(g_currentTask, task);
    std::shared_ptr<WaitGroup> outerGroup = std::exchange(g_waitGroup, nullptr);
    // An exception leaving the function ends the process, as it does on a device.
    ExecuteFunction(std::exchange(task->function, nullptr));
    g_waitGroup = std::move(outerGroup);
    g_currentTask = outerTask;
}
} // namespace

Runtime &Runtime::Instance()
{
    // Never destroyed: detached workers and the timer may still run during static destruction.
    static Runtime *instance = new Runtime();
    return *instance;
}

Runtime::Runtime() : baseWorkers_(std::max<size_t>(2, std::thread::hardware_concurrency()))
{
}

RuntimeTask *Runtime::CurrentTask()
{
    return g_currentTask;
}

RuntimeTask *Runtime::Submit(ffrt_function_header_t *f, const ffrt_task_attr_t *attr, TaskQueue *queue, bool atHead)
{
    if (f == nullptr) {
        return nullptr;
    }
    TaskAttrData data = LoadTaskAttr(attr);
    std::shared_ptr<WaitGroup> group = queue == nullptr ? CurrentWaitGroup() : nullptr;
    auto *task = new RuntimeTask(f, data.qos, queue, group, 2);
    Lock lock(mutex_);
    task->id = ++nextTaskId_;
    ++liveTasks_;
    if (group != nullptr) {
        ++group->outstanding;
    }
    Schedule(task, std::min(data.delayUs, MAX_DELAY_US), atHead);
    return task;
}

void Runtime::Schedule(RuntimeTask *task, uint64_t delayUs, bool atHead)
{
    if (delayUs == 0) {
        MakeDue(task, atHead);
        return;
    }
    task->state = TaskState::DELAYED;
    task->due = Clock::now() + std::chrono::microseconds(delayUs);
    if (task->queue != nullptr) {
        ++task->queue->delayed;
    }
    auto position = timers_.insert(task).first;
    bool earliest = position == timers_.begin();
    EnsureTimer();
    if (earliest) {
        timerChanged_.notify_one();
    }
}

void Runtime::MakeDue(RuntimeTask *task, bool atHead)
{
    TaskQueue *queue = task->queue;
    if (queue == nullptr) {
        PushToPool(task);
        return;
    }
    task->state = TaskState::QUEUED;
    if (atHead) {
        queue->waiting.push_front(task);
    } else {
        queue->waiting.push_back(task);
    }
    Dispatch(*queue);
}

void Runtime::Dispatch(TaskQueue &queue)
{
    while (queue.active < std::max(1, queue.maxConcurrency) && !queue.waiting.empty()) {
        RuntimeTask *task = queue.waiting.front();
        queue.waiting.pop_front();
        ++queue.active;
        PushToPool(task);
    }
}

void Runtime::PushToPool(RuntimeTask *task)
{
    task->state = TaskState::DISPATCHED;
    ready_.push_back(task);
    // Every ready task needs a worker of its own that is not stuck inside another task.
    if (ready_.size() > idleWorkers_) {
        SpawnWorker();
    }
    workAvailable_.notify_one();
}

void Runtime::SpawnWorker()
{
    if (workers_ >= MAX_WORKERS) {
        return;
    }
    ++workers_;
    ++idleWorkers_;
    try {
        std::thread([this] { WorkerMain(); }).detach();
    } catch (const std::system_error &) {
        // Out of threads: the task waits for one of the existing workers.
        --workers_;
        --idleWorkers_;
        return;
    }
    peakWorkers_ = std::max(peakWorkers_, workers_);
}

void Runtime::WorkerMain()
{
    Lock lock(mutex_);
    Clock::time_point idleSince = Clock::now();
    for (;;) {
        if (!ready_.empty()) {
            RuntimeTask *task = ready_.front();
            ready_.pop_front();
            --idleWorkers_;
            task->state = TaskState::RUNNING;
            lock.unlock();
            RunOnThisThread(task);
            lock.lock();
            ++idleWorkers_;
            if (task->queue != nullptr) {
                --task->queue->active;
            }
            Settle(task, TaskState::FINISHED);
            idleSince = Clock::now();
            continue;
        }
        if (workers_ <= baseWorkers_) {
            workAvailable_.wait(lock);
            continue;
        }
        if (Clock::now() >= idleSince + WORKER_IDLE_TIMEOUT) {
            --workers_;
            --idleWorkers_;
            const bool lastExtraWorker = workers_ == baseWorkers_;
            lock.unlock();
            if (lastExtraWorker) {
                ReturnFreeMemory();
            }
            return;
        }
        workAvailable_.wait_until(lock, idleSince + WORKER_IDLE_TIMEOUT);
    }
}

// The pool is back to its base set after a burst. glibc keeps what the burst's workers freed in
// their allocator arenas for reuse; hand it back to the system, as the device's allocator does
// on its own, so that the process's memory returns to where it was before the burst.
void Runtime::ReturnFreeMemory()
{
#ifdef __GLIBC__
    // Workers that left just before this one are still exiting and handing their per-thread
    // caches back to the allocator; what they free after the trim would stay.
    std::this_thread::sleep_for(TRIM_DELAY);
    (void)malloc_trim(0);
#endif
}

void Runtime::EnsureTimer()
{
    if (timerStarted_) {
        return;
    }
    std::thread([this] { TimerMain(); }).detach();
    timerStarted_ = true;
}

void Runtime::TimerMain()
{
    Lock lock(mutex_);
    for (;;) {
        if (timers_.empty()) {
            timerChanged_.wait(lock);
            continue;
        }
        RuntimeTask *task = *timers_.begin();
        // A copy: the task may be cancelled and freed while we wait, and wait_until reads its
        // deadline again after waking.
        Clock::time_point due = task->due;
        if (Clock::now() < due) {
            timerChanged_.wait_until(lock, due);
            continue;
        }
        timers_.erase(timers_.begin());
        if (task->queue != nullptr) {
            --task->queue->delayed;
        }
        MakeDue(task, false);
    }
}

bool Runtime::Withdraw(RuntimeTask *task)
{
    TaskQueue *queue = task->queue;
    switch (task->state) {
        case TaskState::DELAYED:
            timers_.erase(task);
            if (queue != nullptr) {
                --queue->delayed;
            }
            break;
        case TaskState::QUEUED:
            queue->waiting.erase(std::find(queue->waiting.begin(), queue->waiting.end(), task));
            break;
        case TaskState::DISPATCHED:
            ready_.erase(std::find(ready_.begin(), ready_.end(), task));
            if (queue != nullptr) {
                --queue->active;
            }
            break;
        default:
            return false;
    }
    task->state = TaskState::DROPPING;
    return true;
}

void Runtime::DropWithdrawn(Lock &lock, const std::deque<RuntimeTask *> &tasks)
{
    std::deque<ffrt_function_header_t *> functions;
    for (RuntimeTask *task : tasks) {
        functions.push_back(std::exchange(task->function, nullptr));
    }
    // Destroying a function may run arbitrary code, including calls back into the runtime.
    lock.unlock();
    for (ffrt_function_header_t *f : functions) {
        DropFunction(f);
    }
    lock.lock();
    for (RuntimeTask *task : tasks) {
        Settle(task, TaskState::CANCELLED);
    }
}

void Runtime::Settle(RuntimeTask *task, TaskState state)
{
    task->state = state;
    --liveTasks_;
    if (task->group != nullptr) {
        --task->group->outstanding;
        task->group.reset();
    }
    if (TaskQueue *queue = std::exchange(task->queue, nullptr)) {
        Dispatch(*queue);
        if (queue->orphaned && queue->active == 0) {
            queues_.erase(queue);
        }
    }
    settled_.notify_all();
    RuntimeTask::Release(task);
}

int Runtime::Cancel(RuntimeTask *task)
{
    Lock lock(mutex_);
    if (!Withdraw(task)) {
        return ffrt_error;
    }
    DropWithdrawn(lock, {task});
    return ffrt_success;
}

void Runtime::Wait(RuntimeTask *task)
{
    Lock lock(mutex_);
    settled_.wait(lock, [task] { return task->Settled(); });
}

void Runtime::WaitForSubmittedTasks()
{
    std::shared_ptr<WaitGroup> group = CurrentWaitGroup();
    Lock lock(mutex_);
    settled_.wait(lock, [&group] { return group->outstanding == 0; });
}

TaskQueue *Runtime::CreateQueue(const std::string &name, ffrt_qos_t qos, int maxConcurrency)
{
    auto queue = std::make_unique<TaskQueue>(name, qos, maxConcurrency);
    TaskQueue *raw = queue.get();
    Lock lock(mutex_);
    queues_.emplace(raw, std::move(queue));
    return raw;
}

void Runtime::DestroyQueue(TaskQueue *queue)
{
    Lock lock(mutex_);
    std::deque<RuntimeTask *> pending(queue->waiting.begin(), queue->waiting.end());
    for (RuntimeTask *task : timers_) {
        if (task->queue == queue) {
            pending.push_back(task);
        }
    }
    for (RuntimeTask *task : ready_) {
        if (task->queue == queue) {
            pending.push_back(task);
        }
    }
    for (RuntimeTask *task : pending) {
        Withdraw(task);
    }
    DropWithdrawn(lock, pending);
    RuntimeTask *current = CurrentTask();
    if (current != nullptr && current->queue == queue) {
        // Waiting here for our own task would never end; the task frees the queue as it settles.
        queue->orphaned = true;
        return;
    }
    settled_.wait(lock, [queue] { return queue->active == 0; });
    queues_.erase(queue);
}

uint64_t Runtime::WaitingTaskCount(TaskQueue *queue)
{
    Lock lock(mutex_);
    return queue->waiting.size() + queue->delayed;
}

bool Runtime::IsIdle()
{
    Lock lock(mutex_);
    return liveTasks_ == 0;
}

bool Runtime::WaitIdle(std::chrono::milliseconds timeout)
{
    Lock lock(mutex_);
    return settled_.wait_for(lock, timeout, [this] { return liveTasks_ == 0; });
}

size_t Runtime::WorkerCount()
{
    Lock lock(mutex_);
    return workers_;
}

size_t Runtime::PeakWorkerCount()
{
    Lock lock(mutex_);
    return peakWorkers_;
}

TaskSuspension::TaskSuspension() : suspended_(false)
{
}

TaskSuspension::~TaskSuspension()
{
}
} // namespace HostFfrt
