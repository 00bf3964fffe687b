#ifndef VORN_BENCH_BARE_LOAD_H
#define VORN_BENCH_BARE_LOAD_H

#include "load_target.h"
#include "run_result.h"

namespace VornBench {
// The floor the service is measured against: the same POSTs straight through libcurl, a fresh
// easy handle per request with the transport's own TLS and transfer settings, `concurrency`
// threads taking requests off a shared counter.
class BareLoad {
public:
    explicit BareLoad(LoadTarget target);
    RunResult Run();

private:
    struct Outcome;
    Outcome Drive(size_t requests, size_t concurrency) const;
    // One POST as the transport makes it; returns the HTTP status, 0 when the transfer failed.
    long Post(size_t index) const;

    LoadTarget target_;
};
} // namespace VornBench

#endif // VORN_BENCH_BARE_LOAD_H
