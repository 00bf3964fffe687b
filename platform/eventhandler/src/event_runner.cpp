#include "event_runner.h"

#include <atomic>
#include <functional>
#include <pthread.h>
#include <utility>

#include "event_handler.h"

namespace OHOS {
namespace AppExecFwk {
namespace {
thread_local std::weak_ptr<EventRunner> g_currentRunner;

void LoopOn(EventQueue &queue)
{
    while (InnerEvent::Pointer event = queue.GetEvent()) {
        std::shared_ptr<EventHandler> owner = event->GetOwner();
        if (owner != nullptr) {
            owner->DistributeEvent(event);
        }
    }
}

std::string DefaultRunnerName()
{
    static std::atomic<uint32_t> counter {0};
    return "EventRunner#" + std::to_string(++counter);
}

void NameThisThread(const std::string &name)
{
    constexpr size_t maxThreadNameLength = 15;
    pthread_setname_np(pthread_self(), name.substr(0, maxThreadNameLength).c_str());
}
} // namespace

EventRunner::EventRunner(bool deposit, std::string threadName) : deposit_(deposit), threadName_(std::move(threadName))
{
}

std::shared_ptr<EventRunner> EventRunner::CreateRunner(bool deposit, std::string threadName)
{
    std::shared_ptr<EventRunner> runner(new EventRunner(deposit, std::move(threadName)));
    runner->self_ = runner;
    if (deposit) {
        runner->StartThread();
    }
    return runner;
}

std::shared_ptr<EventRunner> EventRunner::Create(bool inNewThread, Mode)
{
    return CreateRunner(inNewThread, DefaultRunnerName());
}

std::shared_ptr<EventRunner> EventRunner::Create(const std::string &threadName, Mode)
{
    return CreateRunner(true, threadName.empty() ? DefaultRunnerName() : threadName);
}

std::shared_ptr<EventRunner> EventRunner::Current()
{
    return g_currentRunner.lock();
}

std::shared_ptr<EventRunner> EventRunner::GetMainEventRunner()
{
    static const std::shared_ptr<EventRunner> mainRunner = CreateRunner(false, "main");
    return mainRunner;
}

void EventRunner::StartThread()
{
    // The thread holds the queue, not the runner, so that dropping the runner ends it.
    std::lock_guard<std::mutex> lock(mutex_);
    thread_ = std::thread([queue = queue_, self = self_, name = threadName_] {
        NameThisThread(name);
        g_currentRunner = self;
        LoopOn(*queue);
    });
    loopThread_ = thread_.get_id();
}

EventRunner::~EventRunner()
{
    queue_->Finish();
    queue_->RemoveAll();
    if (!thread_.joinable()) {
        return;
    }
    if (thread_.get_id() == std::this_thread::get_id()) {
        // The last reference went inside one of our own events: the loop ends after it.
        thread_.detach();
    } else {
        thread_.join();
    }
}

ErrCode EventRunner::Run()
{
    if (deposit_) {
        return EVENT_HANDLER_ERR_RUNNER_NO_PERMIT;
    }
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (running_) {
            return EVENT_HANDLER_ERR_RUNNER_ALREADY;
        }
        running_ = true;
        loopThread_ = std::this_thread::get_id();
        queue_->Prepare();
    }
    std::weak_ptr<EventRunner> outer = std::exchange(g_currentRunner, self_);
    LoopOn(*queue_);
    g_currentRunner = std::move(outer);
    std::lock_guard<std::mutex> lock(mutex_);
    running_ = false;
    loopThread_ = std::thread::id();
    return ERR_OK;
}

ErrCode EventRunner::Stop()
{
    if (deposit_) {
        return EVENT_HANDLER_ERR_RUNNER_NO_PERMIT;
    }
    // Ends the Run() in progress; without one there is nothing to stop.
    std::lock_guard<std::mutex> lock(mutex_);
    if (running_) {
        queue_->Finish();
    }
    return ERR_OK;
}

uint64_t EventRunner::GetThreadId()
{
    std::lock_guard<std::mutex> lock(mutex_);
    return loopThread_ == std::thread::id() ? 0 : static_cast<uint64_t>(std::hash<std::thread::id>()(loopThread_));
}

bool EventRunner::IsCurrentRunnerThread()
{
    std::lock_guard<std::mutex> lock(mutex_);
    return loopThread_ == std::this_thread::get_id();
}
} // namespace AppExecFwk
} // namespace OHOS
