#include "ipc_thread_pool.h"

#include <memory>
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
    std::unique_lock<std::mutex> lock(mutex_);
    if (idle_ <= pending_.size() && threads_ < MAX_THREADS) {
        ++threads_;
        lock.unlock();
        return Start(std::move(work));
    }
    pending_.push_back(Pending {std::move(work), Clock::now()});
    if (idle_ >= pending_.size()) {
        // Woken after unlocking, so that the thread does not at once block on the lock again.
        lock.unlock();
        workArrived_.notify_one();
        return true;
    }
    if (watching_) {
        return true;
    }
    // Without a watch the work still runs once a thread is free, just not after a grace.
    try {
        std::thread(&IpcThreadPool::Watch, this).detach();
        watching_ = true;
    } catch (const std::system_error &) {
    }
    return true;
}

bool IpcThreadPool::Start(std::function<void()> work)
{
    try {
        std::thread(&IpcThreadPool::Serve, this, std::move(work)).detach();
    } catch (const std::system_error &) {
        std::lock_guard<std::mutex> lock(mutex_);
        --threads_;
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
    // Threads started past the bound for stuck work end as soon as there is none.
    if (pending_.empty() && threads_ <= MAX_THREADS) {
        ++idle_;
        workArrived_.wait_for(lock, IDLE_TIME, [this] { return !pending_.empty(); });
        --idle_;
    }
    if (pending_.empty()) {
        --threads_;
        return nullptr;
    }
    std::function<void()> work = std::move(pending_.front().work);
    pending_.pop_front();
    return work;
}

void IpcThreadPool::Watch()
{
    std::unique_lock<std::mutex> lock(mutex_);
    while (!pending_.empty()) {
        const Clock::time_point due = pending_.front().queuedAt + STUCK_GRACE;
        if (Clock::now() < due) {
            watchTimer_.wait_until(lock, due);
            continue;
        }
        // Held apart so that it survives a thread that cannot be started.
        auto work = std::make_shared<std::function<void()>>(std::move(pending_.front().work));
        pending_.pop_front();
        ++threads_;
        lock.unlock();
        const bool started = Start([work] { (*work)(); });
        lock.lock();
        if (!started) {
            pending_.push_front(Pending {std::move(*work), Clock::now()});
        }
    }
    watching_ = false;
}
} // namespace OHOS
