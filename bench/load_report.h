#ifndef VORN_BENCH_LOAD_REPORT_H
#define VORN_BENCH_LOAD_REPORT_H

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "run_result.h"

namespace VornBench {
// The service runs set side by side with the bare libcurl run, their ratios, and the targets:
// every request answered, p50 within 1 ms of bare, throughput at least 90 % of bare, peak
// threads beside the clients at most the runtime's thread limit + 8, RSS after the run within
// 10 % of before it.
class LoadReport {
public:
    LoadReport(std::string endpoint, std::vector<RunResult> serviceRuns, RunResult bareRun);

    void PrintTable(std::ostream &out) const;
    nlohmann::json ToJson() const;
    // True when every request of every run was answered, and answered with HTTP 200.
    bool AllServed() const;
    // The service runs, then the bare one.
    std::vector<RunResult> Runs() const;

private:
    struct Checks {
        bool allAnswered;
        double p50DeltaMs;
        bool p50Ok;
        double throughputRatio;
        bool throughputOk;
        size_t threadLimit;
        bool threadsOk;
        double rssGrowthPercent;
        bool rssOk;
    };

    Checks Check(const RunResult &run) const;
    static double Ratio(double service, double bare);

    std::string endpoint_;
    std::vector<RunResult> serviceRuns_;
    RunResult bareRun_;
};
} // namespace VornBench

#endif // VORN_BENCH_LOAD_REPORT_H
