#ifndef HOST_PLATFORM_FFRT_HOST_H
#define HOST_PLATFORM_FFRT_HOST_H

// Host-only: lets tests and tools observe and steer the task runtime. Never included by the service.

#include <chrono>
#include <cstddef>

namespace HostPlatform {
// True when no task is delayed, queued or running, in the pool or in any queue.
bool FfrtIsIdle();
// Waits until FfrtIsIdle() holds or the timeout passes; returns whether it holds.
bool FfrtWaitIdle(std::chrono::milliseconds timeout);
// Worker threads alive now; grows while every worker is busy, shrinks after idling.
size_t FfrtWorkerCount();
// Most worker threads alive at once since the process started.
size_t FfrtPeakWorkerCount();
// While set, queue submissions fail: ffrt_queue_submit_h returns null and every ffrt_queue_submit*
// destroys its task without running it. Lets tests take the paths for a runtime gone bad.
void FfrtSetQueueSubmitBroken(bool broken);
} // namespace HostPlatform

#endif // HOST_PLATFORM_FFRT_HOST_H
