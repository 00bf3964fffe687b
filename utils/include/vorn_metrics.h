#ifndef VORN_UTILS_VORN_METRICS_H
#define VORN_UTILS_VORN_METRICS_H

#include <cstddef>
#include <cstdint>

namespace OHOS {
namespace Vorn {
// The service's counters since start, for its dump. Every update is one relaxed atomic add: no
// lock, no ordering with the work it counts, so counting costs nothing next to that work, and a
// dump reads a consistent-enough picture without stopping anyone.
class VornMetrics {
public:
    enum class Counter : size_t {
        REQUESTS,
        RESPONSES_2XX,
        RESPONSES_3XX,
        RESPONSES_4XX,
        RESPONSES_5XX,
        RESPONSES_FAILED,
        RESPONSES_TOO_LARGE,
        ATTEMPTS,
        ATTEMPTS_OVERTAKEN,
        WALKS_OVER_BUDGET,
        JOB_WAIT_TIMEOUTS,
        CONNECTIONS_OPENED,
        CONNECTIONS_REUSED,
        CA_LOADS,
        EVENTS_REPORTED,
        EVENTS_DROPPED,
        COUNT,
    };
    enum class Gauge : size_t {
        REQUESTS_IN_FLIGHT,
        ATTEMPTS_IN_FLIGHT,
        COUNT,
    };

    // Holds one unit of a gauge for its lifetime.
    class InFlight {
    public:
        explicit InFlight(Gauge gauge);
        ~InFlight();
        InFlight(const InFlight &) = delete;
        InFlight &operator=(const InFlight &) = delete;

    private:
        Gauge gauge_;
    };

    static void Add(Counter counter, uint64_t amount = 1);
    // Counts a response sent to a client by the class of its "code".
    static void CountResponse(int64_t code);
    static uint64_t Get(Counter counter);
    static int64_t Get(Gauge gauge);
    static const char *Name(Counter counter);
    static const char *Name(Gauge gauge);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_VORN_METRICS_H
