#include <chrono>
#include <thread>

#include "c/sleep.h"
#include "runtime.h"

int ffrt_usleep(uint64_t usec)
{
    HostFfrt::TaskSuspension suspension;
    std::this_thread::sleep_for(std::chrono::microseconds(usec));
    return ffrt_success;
}

void ffrt_yield(void)
{
    // Giving the worker back and asking for it again lets waiting work go first.
    HostFfrt::TaskSuspension suspension;
    std::this_thread::yield();
}
