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
// Worker threads alive now, over all QoS levels. Grows while ready work finds no idle worker,
// shrinks after idling; tasks suspended in runtime waits hold none.
size_t FfrtWorkerCount();
// Most worker threads alive at once since the process started (or the last FfrtResetPeaks).
size_t FfrtPeakWorkerCount();
// Tasks holding a running slot now, over all QoS levels (blocked in std:: waits included).
size_t FfrtRunningCount();
// Most tasks holding a running slot of one QoS level at once since start or FfrtResetPeaks.
size_t FfrtPeakRunningCount();
// Tasks switched out in a runtime wait now (mutex, condition, sleep, future, task waits).
size_t FfrtSuspendedTaskCount();
// Starts both peaks afresh from the present counts.
void FfrtResetPeaks();
// The limits per QoS level in force: running workers (VORN_FFRT_WORKERS, default 8) and worker
// threads (VORN_FFRT_THREADS, default 16). Read once, when the runtime starts.
size_t FfrtRunningWorkerLimit();
size_t FfrtWorkerThreadLimit();
// While set, queue submissions fail: ffrt_queue_submit_h destroys its task without running it and
// returns null. Lets tests take the paths for a runtime gone bad.
void FfrtSetQueueSubmitBroken(bool broken);
} // namespace HostPlatform

#endif // HOST_PLATFORM_FFRT_HOST_H
