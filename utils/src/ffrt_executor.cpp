#include "ffrt_executor.h"

#include <new>
#include <thread>
#include <utility>

#include "ffrt_inner.h"
#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
namespace {
constexpr int64_t MICROSECONDS_PER_MILLISECOND = 1000;

// A std::function laid out behind the runtime's function header, in storage the runtime owns:
// it calls exec once, then destroy, then frees the storage.
struct FunctionStorage {
    ffrt_function_header_t header;
    std::function<void()> closure;
};
static_assert(sizeof(FunctionStorage) <= ffrt_auto_managed_function_storage_size,
    "closure does not fit the runtime's function storage");

void ExecFunction(void *storage)
{
    static_cast<FunctionStorage *>(storage)->closure();
}

void DestroyFunction(void *storage)
{
    static_cast<FunctionStorage *>(storage)->~FunctionStorage();
}

ffrt_function_header_t *WrapFunction(std::function<void()> &&closure, ffrt_function_kind_t kind)
{
    void *memory = ffrt_alloc_auto_managed_function_storage_base(kind);
    if (memory == nullptr) {
        return nullptr;
    }
    auto *storage = new (memory) FunctionStorage {{ExecFunction, DestroyFunction, {0, 0}}, std::move(closure)};
    return &storage->header;
}

class TaskAttr {
public:
    TaskAttr(const char *firstName, const std::string &taskName)
    {
        ffrt_task_attr_init(&attr_);
        ffrt_task_attr_set_name(&attr_, firstName);
        ffrt_task_attr_set_name(&attr_, taskName.c_str());
    }
    ~TaskAttr() { ffrt_task_attr_destroy(&attr_); }
    TaskAttr(const TaskAttr &) = delete;
    TaskAttr &operator=(const TaskAttr &) = delete;

    ffrt_task_attr_t *Get() { return &attr_; }

private:
    ffrt_task_attr_t attr_ {};
};

class QueueAttr {
public:
    QueueAttr() { ffrt_queue_attr_init(&attr_); }
    ~QueueAttr() { ffrt_queue_attr_destroy(&attr_); }
    QueueAttr(const QueueAttr &) = delete;
    QueueAttr &operator=(const QueueAttr &) = delete;

    ffrt_queue_attr_t *Get() { return &attr_; }

private:
    ffrt_queue_attr_t attr_ {};
};
} // namespace

FFRTExecutor::FFRTExecutor(const std::string &name, Mode mode)
    : name_(name), mode_(mode), state_(std::make_shared<TaskState>())
{
    if (mode_ == Mode::NORMAL_SUBMIT) {
        VORN_COMMON_LOGI("created. mode:NORMAL_SUBMIT. name:%{public}s", name_.c_str());
        return;
    }
    QueueAttr attr;
    ffrt_queue_attr_set_qos(attr.Get(), ffrt_qos_default);
    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, name_.c_str(), attr.Get());
    if (queue != nullptr) {
        queue_ = QueueHolder(queue, ffrt_queue_destroy);
    }
    VORN_COMMON_LOGI("created. mode:EVENT_HANDLER. name:%{public}s", name_.c_str());
}

FFRTExecutor::~FFRTExecutor()
{
    state_->handles.Clear();
    queue_.reset();
}

void FFRTExecutor::PostTaskDelay(std::function<void()> task, const std::string &taskName, long delayMs)
{
    if (delayMs == 0) {
        PostTaskInner(std::move(task), taskName);
        return;
    }
    PostDelayTaskInner(std::move(task), taskName, delayMs);
}

bool FFRTExecutor::PostTaskInner(std::function<void()> task, const std::string &taskName)
{
    return Enqueue(std::move(task), taskName, false, 0);
}

bool FFRTExecutor::PostDelayTaskInner(std::function<void()> task, const std::string &taskName, long delayMs)
{
    return Enqueue(std::move(task), taskName, true, delayMs);
}

bool FFRTExecutor::Enqueue(std::function<void()> task, const std::string &taskName, bool delayed, long delayMs)
{
    TaskAttr attr(delayed ? "PostDelayTaskInner" : "PostTaskInner", taskName);
    if (delayed) {
        ffrt_task_attr_set_delay(attr.Get(), static_cast<uint64_t>(delayMs * MICROSECONDS_PER_MILLISECOND));
    }

    if (mode_ != Mode::EVENT_HANDLER || !queue_) {
        VORN_COMMON_LOGI("[NORMAL_SUBMIT]submit, taskName:%{public}s", taskName.c_str());
        // Nothing needs the task after this, so it moves on instead of being copied with all it holds.
        ffrt_submit_base(WrapFunction(MakeClosure(std::move(task), taskName), ffrt_function_kind_general), nullptr,
            nullptr, attr.Get());
        return true;
    }

    VORN_COMMON_LOGI("[EVENT_HANDLER]submit, taskName:%{public}s", taskName.c_str());
    // Submitting under the map's lock keeps a task that finishes at once from erasing its entry
    // before the entry exists, which would leave a stale handle behind.
    bool submitted = false;
    bool slotWasEmpty = false;
    state_->handles.ChangeValueByLambda(taskName, [&](TaskHandleHolder &slot) {
        slotWasEmpty = slot == nullptr;
        ffrt_task_handle_t handle = ffrt_queue_submit_h(queue_.get(),
            WrapFunction(MakeClosure(task, taskName), ffrt_function_kind_queue), attr.Get());
        submitted = handle != nullptr;
        if (submitted) {
            slot = TaskHandleHolder(handle, ffrt_task_handle_destroy);
        }
    });
    if (submitted) {
        return true;
    }
    if (slotWasEmpty) {
        state_->handles.Erase(taskName);
    }
    if (delayed) {
        VORN_COMMON_LOGE("FFRT is broken! Abort PostDelayTask.");
        state_->waiting.fetch_sub(1, std::memory_order_relaxed);
        return true;
    }
    VORN_COMMON_LOGE("FFRT is broken! Use std::thread.");
    // The thread is left joinable on purpose: a runtime that cannot queue work is beyond repair,
    // and leaving scope with a joinable thread ends the process.
    std::thread fallback(MakeClosure(task, taskName));
    return true;
}

// Moves one task from waiting to running for its lifetime, also when the task throws.
class FFRTExecutor::RunningTask {
public:
    explicit RunningTask(TaskState &state) : state_(state)
    {
        state_.waiting.fetch_sub(1, std::memory_order_relaxed);
        state_.running.fetch_add(1, std::memory_order_relaxed);
    }
    ~RunningTask() { state_.running.fetch_sub(1, std::memory_order_relaxed); }
    RunningTask(const RunningTask &) = delete;
    RunningTask &operator=(const RunningTask &) = delete;

private:
    TaskState &state_;
};

std::function<void()> FFRTExecutor::MakeClosure(std::function<void()> task, const std::string &taskName) const
{
    state_->waiting.fetch_add(1, std::memory_order_relaxed);
    return [state = state_, task = std::move(task), taskName]() {
        RunningTask running(*state);
        RunAndForget(task, taskName, *state);
    };
}

void FFRTExecutor::RunTask(const std::function<void()> &task, const std::string &taskName)
{
    RunAndForget(task, taskName, *state_);
}

void FFRTExecutor::RunAndForget(const std::function<void()> &task, const std::string &taskName, TaskState &state)
{
    VORN_COMMON_LOGI("start. taskName:%{public}s", taskName.c_str());
    task();
    VORN_COMMON_LOGI("done. taskName:%{public}s", taskName.c_str());
    state.handles.Erase(taskName);
}

int FFRTExecutor::PendingHandleCount()
{
    return state_->handles.Size();
}

int64_t FFRTExecutor::TasksWaiting() const
{
    return state_->waiting.load(std::memory_order_relaxed);
}

int64_t FFRTExecutor::TasksRunning() const
{
    return state_->running.load(std::memory_order_relaxed);
}
} // namespace Vorn
} // namespace OHOS
