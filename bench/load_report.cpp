#include "load_report.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <utility>

namespace VornBench {
namespace {
constexpr double P50_ALLOWANCE_MS = 1.0;
constexpr double THROUGHPUT_FLOOR = 0.9;
// Threads beside the runtime's workers: the transfer loop, the IPC and log stand-ins, libcurl.
constexpr size_t THREAD_ALLOWANCE = 8;
constexpr double RSS_ALLOWANCE_PERCENT = 10.0;
constexpr double KIB_PER_MIB = 1024.0;
constexpr size_t LABEL_WIDTH = 24;
constexpr size_t MIN_COLUMN_WIDTH = 16;

std::string Format(const char *format, double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof(buffer), format, value);
    return buffer;
}

std::string Mib(size_t kib)
{
    return Format("%.1f", static_cast<double>(kib) / KIB_PER_MIB);
}

void PrintRow(std::ostream &out, size_t columnWidth, const std::string &label, const std::vector<std::string> &cells)
{
    out << label << std::string(LABEL_WIDTH > label.size() ? LABEL_WIDTH - label.size() : 1, ' ');
    for (const std::string &cell : cells) {
        out << std::string(columnWidth > cell.size() ? columnWidth - cell.size() : 1, ' ') << cell;
    }
    out << '\n';
}

const char *YesNo(bool ok)
{
    return ok ? "yes" : "NO";
}
} // namespace

LoadReport::LoadReport(std::string endpoint, std::vector<RunResult> serviceRuns, RunResult bareRun)
    : endpoint_(std::move(endpoint)), serviceRuns_(std::move(serviceRuns)), bareRun_(std::move(bareRun))
{
}

double LoadReport::Ratio(double service, double bare)
{
    return bare > 0 ? service / bare : 0;
}

LoadReport::Checks LoadReport::Check(const RunResult &run) const
{
    Checks checks {};
    checks.allAnswered = run.Unanswered() == 0 && run.failed == 0;
    checks.p50DeltaMs = run.latencyMs.p50 - bareRun_.latencyMs.p50;
    checks.p50Ok = checks.p50DeltaMs <= P50_ALLOWANCE_MS;
    checks.throughputRatio = Ratio(run.throughput, bareRun_.throughput);
    checks.throughputOk = checks.throughputRatio >= THROUGHPUT_FLOOR;
    checks.threadLimit = run.workerThreadLimit + THREAD_ALLOWANCE;
    checks.threadsOk = run.ServingThreadsPeak() <= checks.threadLimit;
    checks.rssGrowthPercent = run.RssGrowthPercent();
    checks.rssOk = checks.rssGrowthPercent <= RSS_ALLOWANCE_PERCENT;
    return checks;
}

bool LoadReport::AllServed() const
{
    bool served = bareRun_.Unanswered() == 0 && bareRun_.failed == 0;
    for (const RunResult &run : serviceRuns_) {
        served = served && run.Unanswered() == 0 && run.failed == 0;
    }
    return served;
}

std::vector<RunResult> LoadReport::Runs() const
{
    std::vector<RunResult> runs = serviceRuns_;
    runs.push_back(bareRun_);
    return runs;
}

void LoadReport::PrintTable(std::ostream &out) const
{
    out << "vorn_load: " << bareRun_.requests / bareRun_.repetitions << " requests, " << bareRun_.concurrency
        << " at a time, against " << endpoint_;
    if (bareRun_.repetitions > 1) {
        out << ", each kind of run " << bareRun_.repetitions << " times (medians)";
    }
    out << "\n\n";
    // Variants get short column titles, explained under the table.
    std::vector<const RunResult *> runs;
    std::vector<std::string> titles;
    for (size_t i = 0; i < serviceRuns_.size(); ++i) {
        runs.push_back(&serviceRuns_[i]);
        titles.push_back(i == 0 ? serviceRuns_[i].name : "variant " + std::to_string(i));
    }
    runs.push_back(&bareRun_);
    std::vector<std::string> header = titles;
    header.push_back(bareRun_.name);
    for (const std::string &title : titles) {
        header.push_back(title + "/bare");
    }
    size_t columnWidth = MIN_COLUMN_WIDTH;
    for (const std::string &title : header) {
        columnWidth = std::max(columnWidth, title.size() + 2);
    }
    PrintRow(out, columnWidth, "", header);

    using Figure = std::function<double(const RunResult &)>;
    auto figureRow = [&](const std::string &label, const char *format, const Figure &figure) {
        std::vector<std::string> cells;
        for (const RunResult *run : runs) {
            cells.push_back(Format(format, figure(*run)));
        }
        for (const RunResult &run : serviceRuns_) {
            double floor = figure(bareRun_);
            cells.push_back(floor > 0 ? Format("%.2f", Ratio(figure(run), floor)) : "-");
        }
        PrintRow(out, columnWidth, label, cells);
    };
    figureRow("latency p50 (ms)", "%.2f", [](const RunResult &run) { return run.latencyMs.p50; });
    figureRow("latency p90 (ms)", "%.2f", [](const RunResult &run) { return run.latencyMs.p90; });
    figureRow("latency p99 (ms)", "%.2f", [](const RunResult &run) { return run.latencyMs.p99; });
    figureRow("throughput (req/s)", "%.0f", [](const RunResult &run) { return run.throughput; });
    figureRow("CPU per request (ms)", "%.3f", [](const RunResult &run) { return run.cpuMsPerRequest; });
    figureRow("peak threads", "%.0f", [](const RunResult &run) { return static_cast<double>(run.threadsPeak); });
    figureRow("  less the C clients", "%.0f",
        [](const RunResult &run) { return static_cast<double>(run.ServingThreadsPeak()); });
    figureRow("peak RSS (MiB)", "%.1f",
        [](const RunResult &run) { return static_cast<double>(run.rssPeakKib) / KIB_PER_MIB; });

    auto plainRow = [&](const std::string &label, const std::function<std::string(const RunResult &)> &cell) {
        std::vector<std::string> cells;
        for (const RunResult *run : runs) {
            cells.push_back(cell(*run));
        }
        PrintRow(out, columnWidth, label, cells);
    };
    plainRow("answered",
        [](const RunResult &run) { return std::to_string(run.answered) + "/" + std::to_string(run.requests); });
    plainRow("failed", [](const RunResult &run) { return std::to_string(run.failed); });
    plainRow("threads before/after",
        [](const RunResult &run) { return std::to_string(run.threadsStart) + "/" + std::to_string(run.threadsIdle); });
    plainRow("peak runtime workers",
        [](const RunResult &run) { return run.workersPeak == 0 ? std::string("-") : std::to_string(run.workersPeak); });
    plainRow("VmHWM (MiB)", [](const RunResult &run) { return Mib(run.hwmKib); });
    plainRow("RSS cold (MiB)", [](const RunResult &run) { return Mib(run.rssColdKib); });
    plainRow("RSS before run (MiB)", [](const RunResult &run) { return Mib(run.rssStartKib); });
    plainRow("RSS after, idle (MiB)",
        [](const RunResult &run) { return Mib(run.rssIdleKib) + Format(" (%+.1f%%)", run.RssGrowthPercent()); });

    for (size_t i = 1; i < serviceRuns_.size(); ++i) {
        out << "variant " << i << ": " << serviceRuns_[i].name << "\n";
    }
    out << "\ntargets (each is set for one concurrency, shown for every run)\n";
    for (const RunResult &run : serviceRuns_) {
        Checks checks = Check(run);
        out << "  " << run.name << ":\n"
            << "    every request answered with 200           " << YesNo(checks.allAnswered) << "\n"
            << "    C=1:   p50 within 1 ms of bare             " << YesNo(checks.p50Ok)
            << Format(" (%+.2f ms)", checks.p50DeltaMs) << "\n"
            << "    C=16:  throughput >= 90 % of bare          " << YesNo(checks.throughputOk)
            << Format(" (%.0f %%)", checks.throughputRatio * 100) << "\n"
            << "    C=256: threads less clients <= limit+8 = " << checks.threadLimit << " " << YesNo(checks.threadsOk)
            << " (" << run.ServingThreadsPeak() << ")\n"
            << "    C=256: RSS after within 10 % of before     " << YesNo(checks.rssOk)
            << Format(" (%+.1f %%)", checks.rssGrowthPercent) << "\n";
    }
}

nlohmann::json LoadReport::ToJson() const
{
    nlohmann::json runs = nlohmann::json::array();
    nlohmann::json comparisons = nlohmann::json::array();
    for (const RunResult &run : serviceRuns_) {
        runs.push_back(run.ToJson());
        Checks checks = Check(run);
        comparisons.push_back({
            {"run", run.name},
            {"ratio_to_bare",
                {
                    {"p50", Ratio(run.latencyMs.p50, bareRun_.latencyMs.p50)},
                    {"p90", Ratio(run.latencyMs.p90, bareRun_.latencyMs.p90)},
                    {"p99", Ratio(run.latencyMs.p99, bareRun_.latencyMs.p99)},
                    {"throughput", Ratio(run.throughput, bareRun_.throughput)},
                    {"cpu_per_request", Ratio(run.cpuMsPerRequest, bareRun_.cpuMsPerRequest)},
                    {"threads_peak",
                        Ratio(static_cast<double>(run.threadsPeak), static_cast<double>(bareRun_.threadsPeak))},
                    {"rss_peak", Ratio(static_cast<double>(run.rssPeakKib), static_cast<double>(bareRun_.rssPeakKib))},
                }},
            {"targets",
                {
                    {"all_answered", checks.allAnswered},
                    {"p50_delta_ms", checks.p50DeltaMs},
                    {"p50_ok", checks.p50Ok},
                    {"throughput_ok", checks.throughputOk},
                    {"thread_limit", checks.threadLimit},
                    {"threads_ok", checks.threadsOk},
                    {"rss_growth_percent", checks.rssGrowthPercent},
                    {"rss_ok", checks.rssOk},
                }},
        });
    }
    runs.push_back(bareRun_.ToJson());
    return {
        {"endpoint", endpoint_},
        {"requests", bareRun_.requests / bareRun_.repetitions},
        {"repetitions", bareRun_.repetitions},
        {"concurrency", bareRun_.concurrency},
        {"runs", runs},
        {"comparisons", comparisons},
        {"all_served", AllServed()},
    };
}
} // namespace VornBench
