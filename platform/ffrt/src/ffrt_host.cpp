#include "ffrt_host.h"

#include "runtime.h"

namespace HostPlatform {
bool FfrtIsIdle()
{
    return HostFfrt::Runtime::Instance().IsIdle();
}

bool FfrtWaitIdle(std::chrono::milliseconds timeout)
{
    return HostFfrt::Runtime::Instance().WaitIdle(timeout);
}

size_t FfrtWorkerCount()
{
    return HostFfrt::Runtime::Instance().WorkerCount();
}

size_t FfrtPeakWorkerCount()
{
    return HostFfrt::Runtime::Instance().PeakWorkerCount();
}

void FfrtSetQueueSubmitBroken(bool broken)
{
    HostFfrt::Runtime::Instance().SetQueueSubmitBroken(broken);
}
} // namespace HostPlatform
