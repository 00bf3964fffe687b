#ifndef VORN_TESTBED_STOP_SIGNAL_H
#define VORN_TESTBED_STOP_SIGNAL_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace VornTestbed {
// A one-way flag that wakes every thread sleeping on it, so delays and stalls end at Stop().
class StopSignal {
public:
    void Trigger();
    bool Triggered() const;
    // Sleeps for `duration`; false when the signal fired first.
    bool SleepFor(std::chrono::milliseconds duration) const;

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable condition_;
    bool triggered_ = false;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_STOP_SIGNAL_H
