#ifndef HOST_PLATFORM_HILOG_HOST_H
#define HOST_PLATFORM_HILOG_HOST_H

// Host-only: lets tests and tools observe what the process logs. Never included by the service.

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "hilog/log_c.h"

namespace HostPlatform {
struct LogRecord {
    LogType type;
    LogLevel level;
    unsigned int domain;
    std::string tag;
    std::string text; // the message as printed: private arguments already masked unless revealed
};

// Collects every line logged in the process while it lives (lines still go to their sink).
// Several captures may be alive at once; each sees every line logged during its lifetime.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    std::vector<LogRecord> Records() const;
    // Number of lines whose text equals `text` exactly.
    size_t Count(const std::string &text) const;
    // Number of lines whose text contains `fragment`.
    size_t CountContaining(const std::string &fragment) const;
    bool Contains(const std::string &text) const { return Count(text) > 0; }
    // Waits until at least `count` lines equal `text`, or the timeout passes.
    bool WaitFor(const std::string &text, std::chrono::milliseconds timeout, size_t count = 1) const;
    void Clear();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
} // namespace HostPlatform

#endif // HOST_PLATFORM_HILOG_HOST_H
