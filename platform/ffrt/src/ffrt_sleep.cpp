#include <chrono>
#include <optional>
#include <thread>

#include "c/sleep.h"
#include "runtime.h"
#include "waiter.h"

int ffrt_usleep(uint64_t usec)
{
    const auto duration = std::chrono::microseconds(usec);
    if (HostFfrt::Runtime::SuspendableTask() == nullptr) {
        std::this_thread::sleep_for(duration);
        return ffrt_success;
    }
    // Nothing else knows this waiter: only its deadline ends the wait.
    HostFfrt::Waiter waiter;
    waiter.Park(nullptr, HostFfrt::Runtime::Clock::now() + duration);
    return ffrt_success;
}

void ffrt_yield(void)
{
    if (!HostFfrt::Runtime::Instance().Yield()) {
        std::this_thread::yield();
    }
}
