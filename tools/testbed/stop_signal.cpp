#include "stop_signal.h"

namespace VornTestbed {
void StopSignal::Trigger()
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        triggered_ = true;
    }
    condition_.notify_all();
}

bool StopSignal::Triggered() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return triggered_;
}

bool StopSignal::SleepFor(std::chrono::milliseconds duration) const
{
    std::unique_lock<std::mutex> lock(mutex_);
    return !condition_.wait_for(lock, duration, [this] { return triggered_; });
}
} // namespace VornTestbed
