#include "waiter.h"

#include "runtime.h"

namespace HostFfrt {
Waiter::Waiter() : task_(Runtime::SuspendableTask()) {}

bool Waiter::Park(std::unique_lock<std::mutex> *guard, std::optional<Clock::time_point> deadline)
{
    if (task_ == nullptr) {
        return ParkThread(guard, deadline);
    }
    return Runtime::Instance().Suspend(*this, guard, deadline);
}

bool Waiter::ParkThread(std::unique_lock<std::mutex> *guard, std::optional<Clock::time_point> deadline)
{
    std::unique_lock<std::mutex> lock(mutex_);
    if (guard != nullptr) {
        guard->unlock();
    }
    auto delivered = [this] { return wakeDelivered_; };
    if (!deadline.has_value()) {
        woken_.wait(lock, delivered);
        return true;
    }
    if (woken_.wait_until(lock, *deadline, delivered)) {
        return true;
    }
    if (Claim()) {
        return false;
    }
    // A waker claimed us just in time and is about to deliver; it still touches this object.
    woken_.wait(lock, delivered);
    return true;
}

bool Waiter::Wake()
{
    if (!Claim()) {
        return false;
    }
    if (task_ != nullptr) {
        Runtime::Instance().Resume(task_);
        return true;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    wakeDelivered_ = true;
    woken_.notify_one();
    return true;
}
} // namespace HostFfrt
