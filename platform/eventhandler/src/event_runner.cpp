#include "event_runner.h"

#include <pthread.h>

#include <atomic>
#include <string>

#include "event_handler.h"

namespace OHOS {
namespace AppExecFwk {
namespace {
void LoopOn(EventQueue &queue)
{
    while (InnerEvent::Pointer event = queue.GetEvent()) {
        // An event whose handler is gone is dropped; a live one is kept alive while it runs.
        std::shared_ptr<EventHandler> owner = event->GetOwner();
        if (owner != nullptr) {
            event->GetTask()();
        }
    }
}

void NameThisThread()
{
    static std::atomic<uint32_t> counter {0};
    constexpr size_t maxThreadNameLength = 15;
    std::string name = "EventRunner#" + std::to_string(++counter);
    pthread_setname_np(pthread_self(), name.substr(0, maxThreadNameLength).c_str());
}
} // namespace

EventRunner::EventRunner(bool deposit) : deposit_(deposit) {}

std::shared_ptr<EventRunner> EventRunner::Create(bool inNewThread, Mode)
{
    std::shared_ptr<EventRunner> runner(new EventRunner(inNewThread));
    if (inNewThread) {
        runner->StartThread();
    }
    return runner;
}

void EventRunner::StartThread()
{
    // The thread holds the queue, not the runner, so that dropping the runner ends it.
    thread_ = std::thread([queue = queue_] {
        NameThisThread();
        LoopOn(*queue);
    });
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
        queue_->Prepare();
    }
    LoopOn(*queue_);
    std::lock_guard<std::mutex> lock(mutex_);
    running_ = false;
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
} // namespace AppExecFwk
} // namespace OHOS
