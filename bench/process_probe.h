#ifndef VORN_BENCH_PROCESS_PROBE_H
#define VORN_BENCH_PROCESS_PROBE_H

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include "process_status.h"

namespace VornBench {
using VornTestbed::ProcessStatus;

// Reads the status once resident memory has stopped moving (memory handed back to the system
// after a burst goes in steps), or after `limit` at the latest.
ProcessStatus ReadAtRest(std::chrono::milliseconds limit);

// CPU time this process has used so far, user and system, in milliseconds.
double ProcessCpuMilliseconds();

// Samples ProcessStatus on its own thread (which counts itself among the threads) every
// `period` while it lives and keeps the peaks.
class PeakSampler {
public:
    explicit PeakSampler(std::chrono::milliseconds period);
    ~PeakSampler();
    PeakSampler(const PeakSampler &) = delete;
    PeakSampler &operator=(const PeakSampler &) = delete;

    // Stops sampling (after one last sample) and returns the peaks seen.
    ProcessStatus Stop();

private:
    void Sample();

    std::chrono::milliseconds period_;
    std::mutex mutex_;
    ProcessStatus peak_;
    std::atomic<bool> stopping_ {false};
    std::thread thread_;
};
} // namespace VornBench

#endif // VORN_BENCH_PROCESS_PROBE_H
