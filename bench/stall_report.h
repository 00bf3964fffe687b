#ifndef VORN_BENCH_STALL_REPORT_H
#define VORN_BENCH_STALL_REPORT_H

#include <ostream>

#include <nlohmann/json.hpp>

#include "run_result.h"

namespace VornBench {
// The stalled-primary scenario's figures: the time from each call to its first response, which
// the race should bring a little after one second however many clients wait on the stalled URL,
// against the target p99 <= 1.5 s.
class StallReport {
public:
    explicit StallReport(RunResult run);

    void PrintTable(std::ostream &out) const;
    nlohmann::json ToJson() const;
    // Every request answered with HTTP 200.
    bool AllServed() const;
    bool TargetMet() const;

private:
    RunResult run_;
};
} // namespace VornBench

#endif // VORN_BENCH_STALL_REPORT_H
