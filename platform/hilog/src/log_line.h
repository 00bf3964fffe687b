#ifndef HOST_PLATFORM_HILOG_LOG_LINE_H
#define HOST_PLATFORM_HILOG_LOG_LINE_H

#include <ctime>
#include <string>
#include <sys/types.h>

#include "hilog_host.h"

namespace HostPlatform {
// Where and when a line was logged.
struct LogOrigin {
    timespec time;
    pid_t pid;
    pid_t tid;
};

LogOrigin CurrentLogOrigin();

// One line in the layout of the device's log viewer, without the line break.
std::string FormatLogLine(const LogRecord &record, const LogOrigin &origin);
} // namespace HostPlatform

#endif // HOST_PLATFORM_HILOG_LOG_LINE_H
