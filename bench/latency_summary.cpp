#include "latency_summary.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace VornBench {
namespace {
double Percentile(const std::vector<double> &sorted, double percent)
{
    auto rank = static_cast<size_t>(std::ceil(percent / 100.0 * static_cast<double>(sorted.size())));
    return sorted[std::clamp<size_t>(rank, 1, sorted.size()) - 1];
}
} // namespace

LatencySummary LatencySummary::Of(std::vector<double> samples)
{
    LatencySummary summary;
    if (samples.empty()) {
        return summary;
    }
    std::sort(samples.begin(), samples.end());
    summary.p50 = Percentile(samples, 50);
    summary.p90 = Percentile(samples, 90);
    summary.p99 = Percentile(samples, 99);
    summary.max = samples.back();
    constexpr int hundred = 100;
    for (int percent = 0; percent <= hundred; ++percent) {
        summary.percentiles.push_back(Percentile(samples, percent));
    }
    summary.mean = std::accumulate(samples.begin(), samples.end(), 0.0) / static_cast<double>(samples.size());
    return summary;
}
} // namespace VornBench
