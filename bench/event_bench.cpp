// Flattening a client event's content into the string map the analytics report carries.
#include <string>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include "base_event.h"

namespace VornBench {
namespace {
void BM_EventDataJsonToMap(benchmark::State &state)
{
    nlohmann::json content = {
        {"appId", "104857631"},
        {"appVersion", "14.2.0.301"},
        {"scene", "cold_start"},
        {"result", "success"},
        {"costTime", "412"},
        {"networkType", "wifi"},
        {"deviceModel", "HBN-AL80"},
        {"osVersion", "5.0.0.115"},
        {"region", "eu"},
        {"traceId", "00f067aa0ba902b7-4bf92f3577b34da6"},
    };
    std::string text = content.dump();
    for (auto _ : state) {
        benchmark::DoNotOptimize(OHOS::Vorn::BaseEvent::EventDataJsonToMap(text));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(BM_EventDataJsonToMap)->Unit(benchmark::kMicrosecond);
} // namespace
} // namespace VornBench
