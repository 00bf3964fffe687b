#include "process_probe.h"

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace VornBench {
namespace {
constexpr std::chrono::milliseconds REST_INTERVAL(200);
constexpr size_t REST_TOLERANCE_KIB = 64;
} // namespace

ProcessStatus ReadAtRest(std::chrono::milliseconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    ProcessStatus previous = ProcessStatus::Read();
    for (;;) {
        std::this_thread::sleep_for(REST_INTERVAL);
        ProcessStatus now = ProcessStatus::Read();
        const size_t change =
            now.rssKib > previous.rssKib ? now.rssKib - previous.rssKib : previous.rssKib - now.rssKib;
        if (change <= REST_TOLERANCE_KIB || std::chrono::steady_clock::now() >= deadline) {
            return now;
        }
        previous = now;
    }
}

double ProcessCpuMilliseconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    auto milliseconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) * 1000.0 + static_cast<double>(time.tv_usec) / 1000.0;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

PeakSampler::PeakSampler(std::chrono::milliseconds period) : period_(period)
{
    thread_ = std::thread([this] {
        while (!stopping_.load()) {
            Sample();
            std::this_thread::sleep_for(period_);
        }
    });
}

PeakSampler::~PeakSampler()
{
    Stop();
}

ProcessStatus PeakSampler::Stop()
{
    if (thread_.joinable()) {
        stopping_.store(true);
        thread_.join();
        Sample();
    }
    std::lock_guard<std::mutex> lock(mutex_);
    return peak_;
}

void PeakSampler::Sample()
{
    ProcessStatus now = ProcessStatus::Read();
    std::lock_guard<std::mutex> lock(mutex_);
    peak_.threads = std::max(peak_.threads, now.threads);
    peak_.rssKib = std::max(peak_.rssKib, now.rssKib);
    peak_.hwmKib = std::max(peak_.hwmKib, now.hwmKib);
}
} // namespace VornBench
