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
    return HostFfrt::Runtime::Instance().Snapshot().workers;
}

size_t FfrtPeakWorkerCount()
{
    return HostFfrt::Runtime::Instance().Snapshot().peakWorkers;
}

size_t FfrtRunningCount()
{
    return HostFfrt::Runtime::Instance().Snapshot().running;
}

size_t FfrtPeakRunningCount()
{
    return HostFfrt::Runtime::Instance().Snapshot().peakRunning;
}

size_t FfrtSuspendedTaskCount()
{
    return HostFfrt::Runtime::Instance().Snapshot().suspended;
}

void FfrtResetPeaks()
{
    HostFfrt::Runtime::Instance().ResetPeaks();
}

size_t FfrtRunningWorkerLimit()
{
    return HostFfrt::Runtime::Instance().WorkerLimit();
}

size_t FfrtWorkerThreadLimit()
{
    return HostFfrt::Runtime::Instance().ThreadLimit();
}

void FfrtSetQueueSubmitBroken(bool broken)
{
    HostFfrt::Runtime::Instance().SetQueueSubmitBroken(broken);
}
} // namespace HostPlatform
