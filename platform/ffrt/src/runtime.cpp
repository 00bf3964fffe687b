#include "runtime.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cxxabi.h>
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
constexpr size_t DEFAULT_WORKER_LIMIT = 8;
constexpr size_t DEFAULT_THREAD_LIMIT = 16;
// The device accepts at most this many threads per QoS level, whatever it is configured to.
constexpr size_t MAX_LIMIT = 128;
constexpr size_t GROUP_COUNT = ffrt_qos_max + 1;
// Workers beyond the base set leave after this long without work.
constexpr std::chrono::seconds WORKER_IDLE_TIMEOUT {3};
constexpr std::chrono::milliseconds TRIM_DELAY {500};
// Longer delays are cut to this, which keeps the due time clear of clock overflow; in practice
// such a task never runs.
constexpr uint64_t MAX_DELAY_US = 100ULL * 365 * 24 * 3600 * 1000 * 1000;

// Worker threads set it around every switch into a task. Task code may resume on another
// thread than it suspended on; it reads thread-local state only through these out-of-line
// accessors, so no address computed on the old thread is ever reused.
thread_local RuntimeTask *g_currentTask = nullptr;

__attribute__((noinline)) RuntimeTask *&CurrentTaskSlot()
{
    return g_currentTask;
}

ExceptionState *ThreadExceptionState()
{
    // libstdc++'s per-thread record starts with these two fields.
    return reinterpret_cast<ExceptionState *>(abi::__cxa_get_globals());
}

// A limit from the environment; anything but a whole number in 1..MAX_LIMIT keeps the default.
size_t LimitFromEnv(const char *name, size_t fallback)
{
    const char *text = std::getenv(name);
    if (text == nullptr || *text == '\0') {
        return fallback;
    }
    char *end = nullptr;
    unsigned long value = std::strtoul(text, &end, 10);
    if (*end != '\0' || value == 0 || value > MAX_LIMIT) {
        return fallback;
    }
    return static_cast<size_t>(value);
}
} // namespace

Runtime &Runtime::Instance()
{
    // Never destroyed: detached workers and the timer may still run during static destruction.
    static Runtime *instance = new Runtime();
    return *instance;
}

Runtime::Runtime()
    : workerLimit_(LimitFromEnv("VORN_FFRT_WORKERS", DEFAULT_WORKER_LIMIT)),
      threadLimit_(LimitFromEnv("VORN_FFRT_THREADS", DEFAULT_THREAD_LIMIT)),
      baseWorkers_(std::min<size_t>(threadLimit_, std::max<size_t>(2, std::thread::hardware_concurrency()))),
      groups_(GROUP_COUNT)
{
}

size_t Runtime::GroupIndex(ffrt_qos_t qos)
{
    return qos >= 0 && static_cast<size_t>(qos) < GROUP_COUNT ? static_cast<size_t>(qos)
                                                              : static_cast<size_t>(ffrt_qos_default);
}

RuntimeTask *Runtime::CurrentTask()
{
    return CurrentTaskSlot();
}

RuntimeTask *Runtime::SuspendableTask()
{
    RuntimeTask *task = CurrentTask();
    return task != nullptr && task->fiber != nullptr ? task : nullptr;
}

RuntimeTask *Runtime::Submit(ffrt_function_header_t *f, const ffrt_task_attr_t *attr, TaskQueue *queue)
{
    if (f == nullptr) {
        return nullptr;
    }
    TaskAttrData data = LoadAttr<TaskAttrData>(attr);
    auto *task = new RuntimeTask(f, queue != nullptr ? queue->qos : ffrt_qos_default, queue, 2);
    ChangeThenWake([this, task, &data] {
        task->id = ++nextTaskId_;
        ++liveTasks_;
        Schedule(task, std::min(data.delayUs, MAX_DELAY_US));
    });
    return task;
}

// Wakes the workers that `change` made work for only once the lock is free: a worker woken
// while it is still held would at once block on it again, which costs two more thread switches.
// Waking after unlocking loses nothing, as a worker looks for work under the lock before it waits.
template <typename Change> void Runtime::ChangeThenWake(Change change)
{
    std::array<size_t, GROUP_COUNT> wakes {};
    {
        Lock lock(mutex_);
        wakeLater_ = true;
        change();
        wakeLater_ = false;
        for (size_t index = 0; index < GROUP_COUNT; ++index) {
            wakes[index] = std::exchange(groups_[index].owedWakes, 0);
        }
    }
    for (size_t index = 0; index < GROUP_COUNT; ++index) {
        for (size_t woken = 0; woken < wakes[index]; ++woken) {
            groups_[index].workAvailable.notify_one();
        }
    }
}

void Runtime::Schedule(RuntimeTask *task, uint64_t delayUs)
{
    if (delayUs == 0) {
        MakeDue(task);
        return;
    }
    task->state = TaskState::DELAYED;
    task->due = Clock::now() + std::chrono::microseconds(delayUs);
    timers_.insert(task);
    EnsureTimer();
    TimerDueAt(task->due);
}

// Wakes the timer thread only when it would otherwise sleep past `due`: a request's time
// limit is usually later than one already pending, and waking the timer for each would cost
// two context switches per timed wait.
void Runtime::TimerDueAt(Clock::time_point due)
{
    if (due < timerWakesAt_) {
        timerWakesAt_ = Clock::time_point::min();
        timerChanged_.notify_one();
    }
}

void Runtime::MakeDue(RuntimeTask *task)
{
    TaskQueue *queue = task->queue;
    if (queue == nullptr) {
        PushToPool(task);
        return;
    }
    task->state = TaskState::QUEUED;
    queue->waiting.push_back(task);
    Dispatch(*queue);
}

void Runtime::Dispatch(TaskQueue &queue)
{
    if (queue.active > 0 || queue.waiting.empty()) {
        return;
    }
    RuntimeTask *task = queue.waiting.front();
    queue.waiting.pop_front();
    ++queue.active;
    PushToPool(task);
}

void Runtime::PushToPool(RuntimeTask *task)
{
    task->state = TaskState::DISPATCHED;
    task->slotGroup = GroupIndex(task->qos);
    groups_[task->slotGroup].ready.push_back(task);
    Kick(groups_[task->slotGroup]);
}

// Wakes or starts a worker for every ready or resumable task that a free running slot allows,
// within the thread limit.
void Runtime::Kick(WorkerGroup &group, size_t looking)
{
    const size_t freeSlots = group.running < workerLimit_ ? workerLimit_ - group.running : 0;
    const size_t startable = std::min(group.ready.size() + group.resuming.size(), freeSlots);
    const size_t groupIndex = static_cast<size_t>(&group - groups_.data());
    while (group.idle < startable && group.threads < threadLimit_) {
        if (!SpawnWorker(groupIndex)) {
            break;
        }
    }
    // One waiting worker per task it can start: waking them all would have every idle worker
    // contend for the lock only to find the work taken.
    const size_t toWake = std::min(startable, group.idle);
    if (wakeLater_) {
        group.owedWakes += toWake > looking ? toWake - looking : 0;
        return;
    }
    for (size_t woken = looking; woken < toWake; ++woken) {
        group.workAvailable.notify_one();
    }
}

bool Runtime::SpawnWorker(size_t groupIndex)
{
    WorkerGroup &group = groups_[groupIndex];
    CountThread(group, true);
    ++group.idle;
    try {
        std::thread([this, groupIndex] { WorkerMain(groupIndex); }).detach();
    } catch (const std::system_error &) {
        // Out of threads: the task waits for one of the existing workers.
        CountThread(group, false);
        --group.idle;
        return false;
    }
    return true;
}

void Runtime::CountThread(WorkerGroup &group, bool added)
{
    if (!added) {
        --group.threads;
        --threads_;
        return;
    }
    ++group.threads;
    ++threads_;
    peakThreads_ = std::max(peakThreads_, threads_);
}

void Runtime::WorkerMain(size_t groupIndex)
{
    WorkerGroup &group = groups_[groupIndex];
    Lock lock(mutex_);
    Clock::time_point idleSince = Clock::now();
    for (;;) {
        if ((!group.resuming.empty() || !group.ready.empty()) && group.running < workerLimit_) {
            RunNext(lock, group, groupIndex);
            idleSince = Clock::now();
            continue;
        }
        if (group.threads <= baseWorkers_) {
            group.workAvailable.wait(lock);
            continue;
        }
        if (Clock::now() >= idleSince + WORKER_IDLE_TIMEOUT) {
            CountThread(group, false);
            --group.idle;
            const bool lastExtraWorker = group.threads == baseWorkers_;
            lock.unlock();
            if (lastExtraWorker) {
                ReturnFreeMemory();
            }
            return;
        }
        group.workAvailable.wait_until(lock, idleSince + WORKER_IDLE_TIMEOUT);
    }
}

// Woken tasks go first: they are older work.
void Runtime::RunNext(Lock &lock, WorkerGroup &group, size_t groupIndex)
{
    RuntimeTask *task = nullptr;
    if (!group.resuming.empty()) {
        task = group.resuming.front();
        group.resuming.pop_front();
    } else {
        task = group.ready.front();
        group.ready.pop_front();
        task->state = TaskState::RUNNING;
        task->slotGroup = groupIndex;
    }
    --group.idle;
    ++group.running;
    peakRunning_ = std::max(peakRunning_, group.running);
    lock.unlock();
    SwitchInto(*task);
    if (task->reason == SwitchReason::EXIT) {
        task->fiber.reset();
    }
    lock.lock();
    --group.running;
    ++group.idle;
    AfterSwitch(task);
    // This worker looks for the next task itself before it waits.
    Kick(group, 1);
}

void Runtime::TaskMain(void *arg)
{
    auto *task = static_cast<RuntimeTask *>(arg);
    // An exception leaving the function ends the process, as it does on a device.
    ExecuteFunction(std::exchange(task->function, nullptr));
    task->reason = SwitchReason::EXIT;
}

// Runs the task until it switches back: on its fiber, or, without one, right here to the end.
void Runtime::SwitchInto(RuntimeTask &task)
{
    RuntimeTask *outer = std::exchange(CurrentTaskSlot(), &task);
    if (task.fiber == nullptr && task.function != nullptr) {
        task.fiber = Fiber::Create(&Runtime::TaskMain, &task);
    }
    if (task.fiber == nullptr) {
        TaskMain(&task);
        CurrentTaskSlot() = outer;
        return;
    }
    errno = task.savedErrno;
    std::swap(*ThreadExceptionState(), task.exceptions);
    task.fiber->Resume();
    std::swap(*ThreadExceptionState(), task.exceptions);
    task.savedErrno = errno;
    CurrentTaskSlot() = outer;
}

void Runtime::AfterSwitch(RuntimeTask *task)
{
    switch (task->reason) {
        case SwitchReason::PARK:
            if (!std::exchange(task->wakePending, false)) {
                task->parked = true;
                ++suspended_;
                return;
            }
            groups_[task->slotGroup].resuming.push_back(task);
            return;
        case SwitchReason::YIELD:
            groups_[task->slotGroup].resuming.push_back(task);
            return;
        case SwitchReason::EXIT:
            if (task->queue != nullptr) {
                --task->queue->active;
            }
            Settle(task, TaskState::FINISHED);
            return;
    }
}

bool Runtime::Suspend(Waiter &waiter, std::unique_lock<std::mutex> *guard, std::optional<Clock::time_point> deadline)
{
    RuntimeTask &task = *waiter.task_;
    if (deadline.has_value()) {
        Lock lock(mutex_);
        waiter.deadlineEntry_ = deadlines_.emplace(*deadline, &waiter);
        waiter.hasDeadlineEntry_ = true;
        EnsureTimer();
        TimerDueAt(*deadline);
    }
    if (guard != nullptr) {
        guard->unlock();
    }
    task.reason = SwitchReason::PARK;
    task.fiber->Suspend();
    if (!deadline.has_value()) {
        return true;
    }
    Lock lock(mutex_);
    if (waiter.hasDeadlineEntry_) {
        deadlines_.erase(waiter.deadlineEntry_);
        waiter.hasDeadlineEntry_ = false;
    }
    return !waiter.timedOut_;
}

void Runtime::Resume(RuntimeTask *task)
{
    ChangeThenWake([this, task] { ResumeLocked(task); });
}

// A task still on its way out of its fiber is queued by its worker once it is out.
void Runtime::ResumeLocked(RuntimeTask *task)
{
    if (!task->parked) {
        task->wakePending = true;
        return;
    }
    task->parked = false;
    --suspended_;
    WorkerGroup &group = groups_[task->slotGroup];
    group.resuming.push_back(task);
    Kick(group);
}

bool Runtime::Yield()
{
    RuntimeTask *task = SuspendableTask();
    if (task == nullptr) {
        return false;
    }
    task->reason = SwitchReason::YIELD;
    task->fiber->Suspend();
    return true;
}

// Waits until tasks settled as `pred` wants; a task waiting here is switched out meanwhile and
// resumed by the settling that makes `pred` true.
template <typename Pred> void Runtime::WaitSettled(Lock &lock, Pred pred)
{
    RuntimeTask *task = SuspendableTask();
    if (pred() || task == nullptr) {
        settled_.wait(lock, pred);
        return;
    }
    settleWaiters_.push_back(SettleWaiter {task, pred});
    lock.unlock();
    task->reason = SwitchReason::PARK;
    task->fiber->Suspend();
    lock.lock();
}

void Runtime::WakeSettleWaiters()
{
    auto done = std::partition(settleWaiters_.begin(), settleWaiters_.end(),
        [](const SettleWaiter &waiter) { return !waiter.done(); });
    for (auto it = done; it != settleWaiters_.end(); ++it) {
        ResumeLocked(it->task);
    }
    settleWaiters_.erase(done, settleWaiters_.end());
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
        EndDueWaits();
        if (timers_.empty() && deadlines_.empty()) {
            timerWakesAt_ = Clock::time_point::max();
            timerChanged_.wait(lock);
            timerWakesAt_ = Clock::time_point::min();
            continue;
        }
        // A copy: the task may be cancelled and freed while we wait, and wait_until reads its
        // deadline again after waking.
        const Clock::time_point due = NextTimerDue();
        if (Clock::now() < due) {
            timerWakesAt_ = due;
            timerChanged_.wait_until(lock, due);
            timerWakesAt_ = Clock::time_point::min();
            continue;
        }
        if (timers_.empty() || (*timers_.begin())->due > due) {
            continue;
        }
        RuntimeTask *task = *timers_.begin();
        timers_.erase(timers_.begin());
        MakeDue(task);
    }
}

Runtime::Clock::time_point Runtime::NextTimerDue() const
{
    Clock::time_point due = Clock::time_point::max();
    if (!timers_.empty()) {
        due = (*timers_.begin())->due;
    }
    if (!deadlines_.empty()) {
        due = std::min(due, deadlines_.begin()->first);
    }
    return due;
}

// Timed waits whose deadline passed end as time-outs, unless a wake claimed them first.
void Runtime::EndDueWaits()
{
    const Clock::time_point now = Clock::now();
    while (!deadlines_.empty() && deadlines_.begin()->first <= now) {
        Waiter *waiter = deadlines_.begin()->second;
        deadlines_.erase(deadlines_.begin());
        waiter->hasDeadlineEntry_ = false;
        if (waiter->Claim()) {
            waiter->timedOut_ = true;
            ResumeLocked(waiter->task_);
        }
    }
}

bool Runtime::Withdraw(RuntimeTask *task)
{
    TaskQueue *queue = task->queue;
    switch (task->state) {
        case TaskState::DELAYED:
            timers_.erase(task);
            break;
        case TaskState::QUEUED:
            queue->waiting.erase(std::find(queue->waiting.begin(), queue->waiting.end(), task));
            break;
        case TaskState::DISPATCHED: {
            std::deque<RuntimeTask *> &ready = groups_[task->slotGroup].ready;
            ready.erase(std::find(ready.begin(), ready.end(), task));
            if (queue != nullptr) {
                --queue->active;
            }
            break;
        }
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
    if (TaskQueue *queue = std::exchange(task->queue, nullptr)) {
        Dispatch(*queue);
        if (queue->orphaned && queue->active == 0) {
            queues_.erase(queue);
        }
    }
    settled_.notify_all();
    WakeSettleWaiters();
    RuntimeTask::Release(task);
}

TaskQueue *Runtime::CreateQueue(const std::string &name, ffrt_qos_t qos)
{
    auto queue = std::make_unique<TaskQueue>(name, qos);
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
    for (const WorkerGroup &group : groups_) {
        for (RuntimeTask *task : group.ready) {
            if (task->queue == queue) {
                pending.push_back(task);
            }
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
    WaitSettled(lock, [queue] { return queue->active == 0; });
    queues_.erase(queue);
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

Runtime::Counts Runtime::Snapshot()
{
    Lock lock(mutex_);
    Counts counts {threads_, peakThreads_, 0, peakRunning_, suspended_};
    for (const WorkerGroup &group : groups_) {
        counts.running += group.running;
    }
    return counts;
}

void Runtime::ResetPeaks()
{
    Lock lock(mutex_);
    peakThreads_ = threads_;
    peakRunning_ = 0;
    for (const WorkerGroup &group : groups_) {
        peakRunning_ = std::max(peakRunning_, group.running);
    }
}

} // namespace HostFfrt
