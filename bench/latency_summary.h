#ifndef VORN_BENCH_LATENCY_SUMMARY_H
#define VORN_BENCH_LATENCY_SUMMARY_H

#include <vector>

namespace VornBench {
// Percentiles of a set of latencies, in the unit of the samples. All zero for no samples.
struct LatencySummary {
    double p50 = 0;
    double p90 = 0;
    double p99 = 0;
    double max = 0;
    double mean = 0;
    // The 0th to the 100th percentile, one per percent: the distribution's shape, for plots.
    // Empty for no samples.
    std::vector<double> percentiles;

    // Nearest-rank percentiles: p99 of 2000 samples is the 1980th smallest.
    static LatencySummary Of(std::vector<double> samples);
};
} // namespace VornBench

#endif // VORN_BENCH_LATENCY_SUMMARY_H
