#ifndef HOST_PLATFORM_EVENTHANDLER_HOST_H
#define HOST_PLATFORM_EVENTHANDLER_HOST_H

// Host-only: lets tests and tools observe the event runners. Never included by the service.

#include <chrono>

namespace HostPlatform {
// Waits until no runner of the process has an event pending (delayed ones included) or
// running, or the timeout passes; returns whether they are all idle.
bool EventRunnersWaitIdle(std::chrono::milliseconds timeout);
} // namespace HostPlatform

#endif // HOST_PLATFORM_EVENTHANDLER_HOST_H
