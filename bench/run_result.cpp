#include "run_result.h"

#include <algorithm>

namespace VornBench {
namespace {
template <typename Field> double Median(const std::vector<RunResult> &runs, Field field)
{
    std::vector<double> values;
    for (const RunResult &run : runs) {
        values.push_back(field(run));
    }
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

template <typename Field> size_t Highest(const std::vector<RunResult> &runs, Field field)
{
    size_t highest = 0;
    for (const RunResult &run : runs) {
        highest = std::max(highest, field(run));
    }
    return highest;
}
// Each percentile the median of the runs', so that the curve drawn is the typical run's.
std::vector<double> MedianPercentiles(const std::vector<RunResult> &runs)
{
    size_t points = runs.front().latencyMs.percentiles.size();
    for (const RunResult &run : runs) {
        points = std::min(points, run.latencyMs.percentiles.size());
    }
    std::vector<double> medians;
    for (size_t i = 0; i < points; ++i) {
        medians.push_back(Median(runs, [i](const RunResult &run) { return run.latencyMs.percentiles[i]; }));
    }
    return medians;
}
} // namespace

RunResult RunResult::Combine(const std::vector<RunResult> &runs)
{
    if (runs.empty()) {
        return {};
    }
    RunResult combined = runs.front();
    combined.repetitions = runs.size();
    combined.requests = 0;
    combined.answered = 0;
    combined.failed = 0;
    combined.seconds = 0;
    for (const RunResult &run : runs) {
        combined.requests += run.requests;
        combined.answered += run.answered;
        combined.failed += run.failed;
        combined.seconds += run.seconds;
        if (run.RssGrowthPercent() > combined.RssGrowthPercent()) {
            combined.rssStartKib = run.rssStartKib;
            combined.rssIdleKib = run.rssIdleKib;
        }
    }
    combined.throughput = Median(runs, [](const RunResult &run) { return run.throughput; });
    combined.cpuMsPerRequest = Median(runs, [](const RunResult &run) { return run.cpuMsPerRequest; });
    combined.latencyMs.p50 = Median(runs, [](const RunResult &run) { return run.latencyMs.p50; });
    combined.latencyMs.p90 = Median(runs, [](const RunResult &run) { return run.latencyMs.p90; });
    combined.latencyMs.p99 = Median(runs, [](const RunResult &run) { return run.latencyMs.p99; });
    combined.latencyMs.max = Median(runs, [](const RunResult &run) { return run.latencyMs.max; });
    combined.latencyMs.mean = Median(runs, [](const RunResult &run) { return run.latencyMs.mean; });
    combined.latencyMs.percentiles = MedianPercentiles(runs);
    combined.threadsPeak = Highest(runs, [](const RunResult &run) { return run.threadsPeak; });
    combined.threadsIdle = Highest(runs, [](const RunResult &run) { return run.threadsIdle; });
    combined.workersPeak = Highest(runs, [](const RunResult &run) { return run.workersPeak; });
    combined.workerThreadLimit = Highest(runs, [](const RunResult &run) { return run.workerThreadLimit; });
    combined.rssPeakKib = Highest(runs, [](const RunResult &run) { return run.rssPeakKib; });
    combined.hwmKib = Highest(runs, [](const RunResult &run) { return run.hwmKib; });
    return combined;
}

double RunResult::RssGrowthPercent() const
{
    if (rssStartKib == 0) {
        return 0;
    }
    return (static_cast<double>(rssIdleKib) - static_cast<double>(rssStartKib)) * 100.0 /
        static_cast<double>(rssStartKib);
}

nlohmann::json RunResult::ToJson() const
{
    return {
        {"name", name},
        {"repetitions", repetitions},
        {"requests", requests},
        {"concurrency", concurrency},
        {"answered", answered},
        {"unanswered", Unanswered()},
        {"failed", failed},
        {"seconds", seconds},
        {"throughput_rps", throughput},
        {"cpu_ms_per_request", cpuMsPerRequest},
        {"latency_ms",
            {{"p50", latencyMs.p50}, {"p90", latencyMs.p90}, {"p99", latencyMs.p99}, {"max", latencyMs.max},
                {"mean", latencyMs.mean}, {"percentiles", latencyMs.percentiles}}},
        {"threads",
            {{"start", threadsStart}, {"peak", threadsPeak}, {"idle", threadsIdle}, {"harness", harnessThreads},
                {"peak_less_harness", ServingThreadsPeak()}, {"peak_runtime_workers", workersPeak},
                {"runtime_thread_limit", workerThreadLimit}}},
        {"rss_kib",
            {{"cold", rssColdKib}, {"start", rssStartKib}, {"peak", rssPeakKib}, {"hwm", hwmKib}, {"idle", rssIdleKib},
                {"idle_growth_percent", RssGrowthPercent()}}},
    };
}

RunResult RunResult::FromJson(const nlohmann::json &json)
{
    RunResult result;
    result.name = json.at("name").get<std::string>();
    result.repetitions = json.value("repetitions", size_t {1});
    result.requests = json.at("requests").get<size_t>();
    result.concurrency = json.at("concurrency").get<size_t>();
    result.answered = json.at("answered").get<size_t>();
    result.failed = json.at("failed").get<size_t>();
    result.seconds = json.at("seconds").get<double>();
    result.throughput = json.at("throughput_rps").get<double>();
    result.cpuMsPerRequest = json.at("cpu_ms_per_request").get<double>();
    const nlohmann::json &latency = json.at("latency_ms");
    result.latencyMs.p50 = latency.at("p50").get<double>();
    result.latencyMs.p90 = latency.at("p90").get<double>();
    result.latencyMs.p99 = latency.at("p99").get<double>();
    result.latencyMs.max = latency.at("max").get<double>();
    result.latencyMs.mean = latency.at("mean").get<double>();
    result.latencyMs.percentiles = latency.value("percentiles", std::vector<double> {});
    const nlohmann::json &threads = json.at("threads");
    result.threadsStart = threads.at("start").get<size_t>();
    result.threadsPeak = threads.at("peak").get<size_t>();
    result.threadsIdle = threads.at("idle").get<size_t>();
    result.harnessThreads = threads.at("harness").get<size_t>();
    result.workersPeak = threads.at("peak_runtime_workers").get<size_t>();
    result.workerThreadLimit = threads.value("runtime_thread_limit", size_t {0});
    const nlohmann::json &rss = json.at("rss_kib");
    result.rssColdKib = rss.at("cold").get<size_t>();
    result.rssStartKib = rss.at("start").get<size_t>();
    result.rssPeakKib = rss.at("peak").get<size_t>();
    result.hwmKib = rss.at("hwm").get<size_t>();
    result.rssIdleKib = rss.at("idle").get<size_t>();
    return result;
}

void RunResult::SetProcessFigures(const ProcessStatus &cold, const ProcessStatus &start, const ProcessStatus &peak,
    const ProcessStatus &idle, size_t harness)
{
    harnessThreads = harness;
    threadsStart = start.threads;
    threadsPeak = peak.threads;
    threadsIdle = idle.threads;
    rssColdKib = cold.rssKib;
    rssStartKib = start.rssKib;
    rssPeakKib = peak.rssKib;
    hwmKib = idle.hwmKib;
    rssIdleKib = idle.rssKib;
}
} // namespace VornBench
