#include "vorn_metrics.h"

#include <array>
#include <atomic>

namespace OHOS {
namespace Vorn {
namespace {
constexpr size_t COUNTER_COUNT = static_cast<size_t>(VornMetrics::Counter::COUNT);
constexpr size_t GAUGE_COUNT = static_cast<size_t>(VornMetrics::Gauge::COUNT);

// Names as the dump prints them, in enumeration order.
constexpr std::array<const char *, COUNTER_COUNT> COUNTER_NAMES = {
    "requests",
    "responses_2xx",
    "responses_3xx",
    "responses_4xx",
    "responses_5xx",
    "responses_failed",
    "responses_too_large",
    "attempts",
    "attempts_overtaken",
    "walks_stopped_by_budget",
    "job_wait_timeouts",
    "connections_opened",
    "connections_reused",
    "ca_file_loads",
    "events_reported",
    "events_dropped",
};
constexpr std::array<const char *, GAUGE_COUNT> GAUGE_NAMES = {
    "requests_in_flight",
    "attempts_in_flight",
};

std::array<std::atomic<uint64_t>, COUNTER_COUNT> g_counters {};
std::array<std::atomic<int64_t>, GAUGE_COUNT> g_gauges {};

constexpr int64_t HTTP_CLASS = 100;
constexpr int64_t CLASS_2XX = 2;
constexpr int64_t CLASS_3XX = 3;
constexpr int64_t CLASS_4XX = 4;
constexpr int64_t CLASS_5XX = 5;

VornMetrics::Counter ResponseCounter(int64_t code)
{
    switch (code / HTTP_CLASS) {
        case CLASS_2XX:
            return VornMetrics::Counter::RESPONSES_2XX;
        case CLASS_3XX:
            return VornMetrics::Counter::RESPONSES_3XX;
        case CLASS_4XX:
            return VornMetrics::Counter::RESPONSES_4XX;
        case CLASS_5XX:
            return VornMetrics::Counter::RESPONSES_5XX;
        default:
            return VornMetrics::Counter::RESPONSES_FAILED;
    }
}
} // namespace

VornMetrics::InFlight::InFlight(Gauge gauge) : gauge_(gauge)
{
    g_gauges[static_cast<size_t>(gauge_)].fetch_add(1, std::memory_order_relaxed);
}

VornMetrics::InFlight::~InFlight()
{
    g_gauges[static_cast<size_t>(gauge_)].fetch_sub(1, std::memory_order_relaxed);
}

void VornMetrics::Add(Counter counter, uint64_t amount)
{
    g_counters[static_cast<size_t>(counter)].fetch_add(amount, std::memory_order_relaxed);
}

void VornMetrics::CountResponse(int64_t code)
{
    Add(ResponseCounter(code));
}

uint64_t VornMetrics::Get(Counter counter)
{
    return g_counters[static_cast<size_t>(counter)].load(std::memory_order_relaxed);
}

int64_t VornMetrics::Get(Gauge gauge)
{
    return g_gauges[static_cast<size_t>(gauge)].load(std::memory_order_relaxed);
}

const char *VornMetrics::Name(Counter counter)
{
    return COUNTER_NAMES[static_cast<size_t>(counter)];
}

const char *VornMetrics::Name(Gauge gauge)
{
    return GAUGE_NAMES[static_cast<size_t>(gauge)];
}
} // namespace Vorn
} // namespace OHOS
