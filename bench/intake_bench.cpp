// Request intake: the code-1 transaction through VornSAStub::OnRemoteRequest, timed from the
// call to its return. Each call sets off a real request against a local HTTPS server that
// answers at once; that work runs on the service's pools and is not timed, and the benchmark
// lets it drain every BATCH calls so that it never piles up.
#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench_request.h"
#include "certificate_authority.h"
#include "ffrt_host.h"
#include "i_vorn_sa_interface.h"
#include "ipc_host.h"
#include "latency_summary.h"
#include "local_https_server.h"
#include "message_option.h"
#include "message_parcel.h"
#include "temp_dir.h"
#include "vorn_request_callback_stub.h"
#include "vorn_sa_stub.h"

namespace VornBench {
namespace {
using Clock = std::chrono::steady_clock;

constexpr int64_t ITERATIONS = 4096;
constexpr int WARM_UP_CALLS = 4;
constexpr std::chrono::seconds DRAIN_TIMEOUT(60);
constexpr uint32_t REQUEST_CODE = static_cast<uint32_t>(OHOS::Vorn::VornInterfaceCode::GET_VORN_CONFIG_FROM_SERVER);

// One code-1 call as the IPC layer delivers it; returns how long it took.
double TimedCall(OHOS::Vorn::VornSAStub &stub, const OHOS::sptr<OHOS::IRemoteObject> &callback,
    const std::string &request, int &result)
{
    OHOS::MessageParcel data;
    data.WriteInterfaceToken(OHOS::Vorn::IVornSAInterface::GetDescriptor());
    data.WriteRemoteObject(callback);
    data.WriteString(request);
    OHOS::MessageParcel reply;
    OHOS::MessageOption option;
    const Clock::time_point start = Clock::now();
    result = stub.OnRemoteRequest(REQUEST_CODE, data, reply, option);
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Lets every request set off so far finish; the server forgets them to keep its memory flat.
bool Drain(VornTestbed::LocalHttpsServer &server)
{
    bool idle = HostPlatform::FfrtWaitIdle(DRAIN_TIMEOUT);
    server.ClearRequests();
    return idle;
}

void BM_RequestIntake(benchmark::State &state)
{
    VornTestbed::TempDir dir;
    std::optional<VornTestbed::CertificateFiles> files = VornTestbed::MakeCertificateFiles(dir.Path("pki"));
    if (!files) {
        state.SkipWithError("cannot make certificates");
        return;
    }
    VornTestbed::LocalHttpsServer server(VornTestbed::ServerOptions::Tls(*files));
    server.Respond(QUERY_PATH, QueryResponse());
    if (!server.Start()) {
        state.SkipWithError("cannot start the local HTTPS server");
        return;
    }
    auto stub = OHOS::sptr<OHOS::Vorn::VornSAStub>::MakeSptr();
    auto responses = std::make_shared<std::atomic<size_t>>(0);
    auto recorder = OHOS::sptr<OHOS::Vorn::VornRequestCallbackStub>::MakeSptr(
        [responses](const std::string &) { responses->fetch_add(1, std::memory_order_relaxed); });
    OHOS::sptr<OHOS::IRemoteObject> callback = HostPlatform::MakeRemoteProxy(recorder->AsObject());
    const std::string request = ToRequestJson(MakeBenchRequest(1), server.BaseUrl(), files->caFile);

    // The first calls create the pools and initialise libcurl; those one-off costs stay out.
    int result = 0;
    for (int i = 0; i < WARM_UP_CALLS; ++i) {
        (void)TimedCall(*stub, callback, request, result);
    }
    Drain(server);

    std::vector<double> micros;
    micros.reserve(static_cast<size_t>(state.max_iterations));
    int64_t inBatch = 0;
    for (auto _ : state) {
        double seconds = TimedCall(*stub, callback, request, result);
        state.SetIterationTime(seconds);
        micros.push_back(seconds * 1e6);
        if (result != 0) {
            state.SkipWithError("the service refused the request");
            break;
        }
        if (++inBatch == state.range(0)) {
            inBatch = 0;
            state.PauseTiming();
            if (!Drain(server)) {
                state.SkipWithError("the service did not become idle");
            }
            state.ResumeTiming();
        }
    }
    if (!Drain(server)) {
        state.SkipWithError("the service did not become idle");
    }

    LatencySummary summary = LatencySummary::Of(micros);
    state.counters["p50_us"] = summary.p50;
    state.counters["p90_us"] = summary.p90;
    state.counters["p99_us"] = summary.p99;
    state.counters["max_us"] = summary.max;
    state.counters["request_bytes"] = static_cast<double>(request.size());
    // Every call must have been answered by the background work, or the numbers mean little.
    state.counters["unanswered"] = static_cast<double>(
        static_cast<size_t>(WARM_UP_CALLS) + micros.size() - responses->load(std::memory_order_relaxed));
}
// Batch 1: every call meets an idle service; 8 and 64: calls overlap the work of the calls before.
BENCHMARK(BM_RequestIntake)
    ->ArgName("batch")
    ->Arg(1)
    ->Arg(8)
    ->Arg(64)
    ->UseManualTime()
    ->Iterations(ITERATIONS)
    ->Unit(benchmark::kMicrosecond);
} // namespace
} // namespace VornBench
