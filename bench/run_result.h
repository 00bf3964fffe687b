#ifndef VORN_BENCH_RUN_RESULT_H
#define VORN_BENCH_RUN_RESULT_H

#include <cstddef>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "latency_summary.h"
#include "process_probe.h"

namespace VornBench {
// What one load run measured: N requests at concurrency C, through the service or bare libcurl.
struct RunResult {
    std::string name; // "service", "service[VAR=value]" or "bare"
    size_t repetitions = 1;
    size_t requests = 0;
    size_t concurrency = 0;
    size_t answered = 0; // a first response (service) or a finished transfer (bare) arrived
    size_t failed = 0; // answered, but not with HTTP 200
    double seconds = 0; // from the first call to the last first response
    double throughput = 0; // answered requests per second
    LatencySummary latencyMs; // call to first response
    double cpuMsPerRequest = 0; // the process's CPU time during the run over the requests sent
    size_t harnessThreads = 0; // the tool's own during the run: its clients, main thread and sampler
    size_t threadsStart = 0;
    size_t threadsPeak = 0; // sampled during the run, the tool's own included
    size_t threadsIdle = 0; // after the run, once the process was idle again
    size_t workersPeak = 0; // task-runtime workers at most (service runs only)
    size_t workerThreadLimit = 0; // the runtime's limit on worker threads (service runs only)
    size_t rssColdKib = 0; // when the process had done nothing yet
    size_t rssStartKib = 0; // after the warm-up, at rest: the run's starting value
    size_t rssPeakKib = 0; // sampled VmRSS during the run
    size_t hwmKib = 0; // VmHWM at the end: the process's resident peak, warm-up included
    size_t rssIdleKib = 0;

    // The thread and memory figures of a run: at the start (cold, after the warm-up), its sampled
    // peak and after it at rest. The harness is the tool's own threads during the run.
    void SetProcessFigures(const ProcessStatus &cold, const ProcessStatus &start, const ProcessStatus &peak,
        const ProcessStatus &idle, size_t harness);

    size_t Unanswered() const { return requests - answered; }
    // The peak less the tool's own threads: what the service (or libcurl) ran beside the clients.
    size_t ServingThreadsPeak() const { return threadsPeak > harnessThreads ? threadsPeak - harnessThreads : 0; }
    // RSS after the run relative to before it, in percent (positive: grown).
    double RssGrowthPercent() const;

    // Repeated runs of one kind as one: counts summed; latency, throughput and CPU the median of
    // the runs; peaks the highest; the RSS before and after from the run that grew the most.
    static RunResult Combine(const std::vector<RunResult> &runs);

    nlohmann::json ToJson() const;
    static RunResult FromJson(const nlohmann::json &json);
};
} // namespace VornBench

#endif // VORN_BENCH_RUN_RESULT_H
