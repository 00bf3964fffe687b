#include "ipc_thread_pool.h"

#include <system_error>
#include <thread>
#include <utility>

namespace OHOS {
IpcThreadPool &IpcThreadPool::Get()
{
    // Never destroyed: pool threads may still be running when static destructors run.
    static IpcThreadPool *instance = new IpcThreadPool();
    return *instance;
}

bool IpcThreadPool::Run(std::function<void()> work)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (idle_ > pending_.size()) {
            pending_.push_back(std::move(work));
            workArrived_.notify_one();
            return true;
        }
    }
    try {
        std::thread(&IpcThreadPool::Serve, this, std::move(work)).detach();
    } catch (const std::system_error &) {
        return false;
    }
    return true;
}

void IpcThreadPool::Serve(std::function<void()> work)
{
    while (work) {
        work();
        // Whatever the work held is let go before the thread waits for more.
        work = nullptr;
        work = NextWork();
    }
}

std::function<void()> IpcThreadPool::NextWork()
{
    std::unique_lock<std::mutex> lock(mutex_);
    if (idle_ >= MAX_IDLE_THREADS) {
        return nullptr;
    }
    ++idle_;
    workArrived_.wait_for(lock, IDLE_TIME, [this] { return !pending_.empty(); });
    --idle_;
    if (pending_.empty()) {
        return nullptr;
    }
    std::function<void()> work = std::move(pending_.front());
    pending_.pop_front();
    return work;
}
} // namespace OHOS
