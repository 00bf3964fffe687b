#include "stall_report.h"

#include <cstdio>
#include <string>
#include <utility>

namespace VornBench {
namespace {
constexpr double P99_LIMIT_MS = 1500.0;

std::string Seconds(double milliseconds)
{
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%.3f s", milliseconds / 1000.0);
    return buffer;
}
} // namespace

StallReport::StallReport(RunResult run) : run_(std::move(run)) {}

bool StallReport::AllServed() const
{
    return run_.Unanswered() == 0 && run_.failed == 0;
}

bool StallReport::TargetMet() const
{
    return AllServed() && run_.latencyMs.p99 <= P99_LIMIT_MS;
}

void StallReport::PrintTable(std::ostream &out) const
{
    const LatencySummary &latency = run_.latencyMs;
    out << "vorn_load: stalled primary, " << run_.requests / run_.repetitions << " requests, " << run_.concurrency
        << " at a time; each names a URL answering after 3 s, then one answering at once";
    if (run_.repetitions > 1) {
        out << "; " << run_.repetitions << " runs (medians)";
    }
    out << "\n\ncall to first response  p50 " << Seconds(latency.p50) << ", p90 " << Seconds(latency.p90) << ", p99 "
        << Seconds(latency.p99) << ", max " << Seconds(latency.max) << "\n"
        << "answered                " << run_.answered << "/" << run_.requests << ", " << run_.failed
        << " not with 200\n"
        << "peak runtime workers    " << run_.workersPeak << "\n"
        << "peak threads less the C clients  " << run_.ServingThreadsPeak() << "\n"
        << "\ntarget: every request answered with 200 and p99 <= 1.5 s  " << (TargetMet() ? "yes" : "NO") << "\n";
}

nlohmann::json StallReport::ToJson() const
{
    return {
        {"scenario", "stalled-primary"},
        {"run", run_.ToJson()},
        {"targets", {{"p99_limit_ms", P99_LIMIT_MS}, {"met", TargetMet()}}},
        {"all_served", AllServed()},
    };
}
} // namespace VornBench
