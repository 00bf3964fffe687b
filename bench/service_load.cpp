#include "service_load.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "bench_request.h"
#include "ffrt_host.h"
#include "process_probe.h"
#include "vorn_request_callback_stub.h"
#include "vorn_sa_proxy.h"

namespace VornBench {
namespace {
using Clock = std::chrono::steady_clock;

// A request still unanswered this long after its call counts as never answered: the service
// gives up on a request after 9 s and on its job after 10 s.
constexpr std::chrono::seconds SILENCE_LIMIT(30);
constexpr std::chrono::seconds IDLE_LIMIT(60);
// Workers beyond the runtime's base set leave after 3 s without work.
constexpr std::chrono::seconds WORKER_TRIM_LIMIT(10);
constexpr std::chrono::milliseconds SAMPLE_PERIOD(5);
constexpr std::chrono::milliseconds SETTLE_PAUSE(200);
constexpr std::chrono::seconds REST_LIMIT(5);
constexpr std::chrono::seconds MEMORY_RETURN_PAUSE(1);

// Responses are serialised with sorted keys and the body escaped, so an unescaped "code" member
// is the top-level one; a plain search keeps the clients' work out of the measured CPU time.
bool IsHttpOk(const std::string &response)
{
    return response.find("\"code\":200,") != std::string::npos;
}

// The first response of one request and when it came.
struct FirstResponse {
    std::mutex mutex;
    std::condition_variable arrived;
    std::optional<Clock::time_point> at;
    bool ok = false;
};

double Milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}
} // namespace

struct ServiceLoad::Call {
    bool answered = false;
    bool ok = false;
    Clock::time_point calledAt {};
    std::optional<Clock::duration> latency;
};

struct ServiceLoad::Outcome {
    std::vector<double> latencyMs;
    size_t answered = 0;
    size_t failed = 0;
    Clock::time_point firstCall {};
    Clock::time_point lastAnswer {};
};

ServiceLoad::ServiceLoad(OHOS::sptr<OHOS::IRemoteObject> service, LoadTarget target)
    : service_(OHOS::iface_cast<OHOS::Vorn::IVornSAInterface>(service)), target_(std::move(target)),
      warmUp_(target_.baseUrl, target_.caFile, {QUERY_PATH}),
      measured_(target_.baseUrl, target_.caFile,
          target_.stalledPrimary ? std::vector<std::string> {STALLED_PATH, QUERY_PATH}
                                 : std::vector<std::string> {QUERY_PATH})
{
}

RunResult ServiceLoad::Run()
{
    const ProcessStatus cold = ProcessStatus::Read();
    (void)Drive(warmUp_, WarmUpRequests(target_), target_.concurrency);
    SettleToIdle();
    const ProcessStatus start = ReadAtRest(REST_LIMIT);
    PeakSampler sampler(SAMPLE_PERIOD);
    const double cpuBefore = ProcessCpuMilliseconds();
    Outcome outcome = Drive(measured_, target_.requests, target_.concurrency);
    const double cpuUsed = ProcessCpuMilliseconds() - cpuBefore;
    const ProcessStatus peak = sampler.Stop();
    SettleToIdle();
    const ProcessStatus idle = ReadAtRest(REST_LIMIT);

    RunResult result;
    result.name = "service";
    result.requests = target_.requests;
    result.concurrency = target_.concurrency;
    result.answered = outcome.answered;
    result.failed = outcome.failed;
    result.seconds = Milliseconds(outcome.lastAnswer - outcome.firstCall) / 1000.0;
    result.throughput = result.seconds > 0 ? static_cast<double>(outcome.answered) / result.seconds : 0;
    result.latencyMs = LatencySummary::Of(std::move(outcome.latencyMs));
    result.cpuMsPerRequest = cpuUsed / static_cast<double>(target_.requests);
    // The client threads, the main thread and the sampler.
    result.SetProcessFigures(cold, start, peak, idle, std::min(target_.requests, target_.concurrency) + 2);
    result.workersPeak = HostPlatform::FfrtPeakWorkerCount();
    result.workerThreadLimit = HostPlatform::FfrtWorkerThreadLimit();
    return result;
}

ServiceLoad::Outcome ServiceLoad::Drive(const RequestTemplate &templates, size_t requests, size_t concurrency) const
{
    std::atomic<size_t> next {0};
    std::atomic<bool> givenUp {false};
    std::mutex mutex;
    Outcome outcome;
    outcome.latencyMs.reserve(requests);
    auto work = [&]() {
        for (size_t index = next++; index < requests && !givenUp.load(); index = next++) {
            Call call = CallOnce(templates, index);
            std::lock_guard<std::mutex> lock(mutex);
            if (!call.answered) {
                // The service lost a request: stop sending, so the run ends within SILENCE_LIMIT.
                givenUp.store(true);
                continue;
            }
            ++outcome.answered;
            outcome.failed += call.ok ? 0 : 1;
            if (call.latency) {
                outcome.latencyMs.push_back(Milliseconds(*call.latency));
                outcome.lastAnswer = std::max(outcome.lastAnswer, call.calledAt + *call.latency);
            }
        }
    };
    outcome.firstCall = Clock::now();
    std::vector<std::thread> clients;
    for (size_t i = 0; i < std::min(concurrency, requests); ++i) {
        clients.emplace_back(work);
    }
    for (std::thread &client : clients) {
        client.join();
    }
    return outcome;
}

ServiceLoad::Call ServiceLoad::CallOnce(const RequestTemplate &templates, size_t index) const
{
    const std::string request = templates.For(index);
    // Shared with the callback, since a request given up on may still be answered later.
    auto first = std::make_shared<FirstResponse>();
    auto callback = OHOS::sptr<OHOS::Vorn::VornRequestCallbackStub>::MakeSptr([first](const std::string &response) {
        std::lock_guard<std::mutex> lock(first->mutex);
        if (!first->at) {
            first->at = Clock::now();
            first->ok = IsHttpOk(response);
        }
        first->arrived.notify_all();
    });
    Call call;
    call.calledAt = Clock::now();
    if (service_ == nullptr || service_->PostVornRequest(request, callback) != 0) {
        call.answered = true; // refused at once: answered, but not served
        return call;
    }
    std::unique_lock<std::mutex> lock(first->mutex);
    if (!first->arrived.wait_for(lock, SILENCE_LIMIT, [&first]() { return first->at.has_value(); })) {
        return call;
    }
    call.answered = true;
    call.ok = first->ok;
    call.latency = *first->at - call.calledAt;
    return call;
}

// Waits until the runtime runs nothing and its extra workers have left, so that memory and
// thread counts are read from a service at rest.
void ServiceLoad::SettleToIdle()
{
    (void)HostPlatform::FfrtWaitIdle(IDLE_LIMIT);
    const size_t baseWorkers = std::max<size_t>(2, std::thread::hardware_concurrency());
    const Clock::time_point deadline = Clock::now() + WORKER_TRIM_LIMIT;
    while (HostPlatform::FfrtWorkerCount() > baseWorkers && Clock::now() < deadline) {
        std::this_thread::sleep_for(SETTLE_PAUSE);
    }
    // The runtime hands freed memory back to the system shortly after its last extra worker left.
    std::this_thread::sleep_for(MEMORY_RETURN_PAUSE);
}
} // namespace VornBench
