// What the dump's counters cost the paths that update them: one relaxed atomic add per event,
// alone and with every thread of the machine adding to the same counter at once.
#include <benchmark/benchmark.h>

#include "vorn_metrics.h"

namespace VornBench {
namespace {
using OHOS::Vorn::VornMetrics;

void BM_CounterAdd(benchmark::State &state)
{
    for (auto _ : state) {
        VornMetrics::Add(VornMetrics::Counter::REQUESTS);
    }
}
BENCHMARK(BM_CounterAdd)->ThreadRange(1, 2)->Unit(benchmark::kNanosecond);

void BM_GaugeInFlight(benchmark::State &state)
{
    for (auto _ : state) {
        VornMetrics::InFlight inFlight(VornMetrics::Gauge::ATTEMPTS_IN_FLIGHT);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_GaugeInFlight)->Unit(benchmark::kNanosecond);
} // namespace
} // namespace VornBench
