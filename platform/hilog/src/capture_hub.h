#ifndef HOST_PLATFORM_HILOG_CAPTURE_HUB_H
#define HOST_PLATFORM_HILOG_CAPTURE_HUB_H

#include <vector>

#include "hilog_host.h"

namespace HostPlatform {
// Hands the lines of one log call to every live LogCapture.
void PublishToCaptures(const std::vector<LogRecord> &records);
} // namespace HostPlatform

#endif // HOST_PLATFORM_HILOG_CAPTURE_HUB_H
