#ifndef VORN_TESTBED_PROCESS_STATUS_H
#define VORN_TESTBED_PROCESS_STATUS_H

#include <cstddef>

namespace VornTestbed {
// This process's thread count and memory as /proc/self/status tells them (0 for what it does
// not tell).
struct ProcessStatus {
    size_t threads = 0;
    size_t rssKib = 0; // VmRSS
    // VmHWM: the most resident memory since the process started (or since the peak was last reset)
    size_t hwmKib = 0;

    static ProcessStatus Read();
};
} // namespace VornTestbed

#endif // VORN_TESTBED_PROCESS_STATUS_H
