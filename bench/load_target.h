#ifndef VORN_BENCH_LOAD_TARGET_H
#define VORN_BENCH_LOAD_TARGET_H

#include <algorithm>
#include <cstddef>
#include <string>

namespace VornBench {
// What one load run aims at: the local server, the CA file that vouches for it, and how many
// requests to send how many at a time.
struct LoadTarget {
    std::string baseUrl;
    std::string caFile;
    size_t requests = 0;
    size_t concurrency = 1;
    // The measured requests name STALLED_PATH first and the query path second (service runs only).
    bool stalledPrimary = false;
};

// Requests sent at the run's concurrency before it is measured, so that one-off costs stay out
// of its figures: pools, libcurl and TLS library set-up, the first CA file read, and the
// allocator arenas and code pages that running C requests at once brings in for good. The RSS
// measured before the run is thus the process at rest after that concurrency; what the run
// leaves on top of it is what the run itself kept. The warm-up never names a stalled URL.
inline size_t WarmUpRequests(const LoadTarget &target)
{
    constexpr size_t minimum = 8;
    constexpr size_t perClient = 2;
    return std::min(target.requests, std::max(minimum, perClient * target.concurrency));
}
} // namespace VornBench

#endif // VORN_BENCH_LOAD_TARGET_H
