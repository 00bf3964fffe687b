#include "bare_load.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <curl/curl.h>

#include "bench_request.h"
#include "process_probe.h"
#include "vorn_http_logic.h"

namespace VornBench {
namespace {
using Clock = std::chrono::steady_clock;

// The transport's own settings, so the comparison is with the same transfer.
using OHOS::Vorn::HttpLogic;
constexpr long HTTP_OK = 200;
constexpr std::chrono::milliseconds SAMPLE_PERIOD(5);
constexpr std::chrono::milliseconds SETTLE_PAUSE(200);
constexpr std::chrono::seconds REST_LIMIT(5);

struct CurlDeleter {
    void operator()(CURL *curl) const { curl_easy_cleanup(curl); }
};
struct SlistDeleter {
    void operator()(curl_slist *list) const { curl_slist_free_all(list); }
};

size_t Collect(const char *data, size_t size, size_t count, std::string *out)
{
    out->append(data, size * count);
    return size * count;
}

double Milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}
} // namespace

struct BareLoad::Outcome {
    std::vector<double> latencyMs;
    size_t answered = 0;
    size_t failed = 0;
    double seconds = 0;
};

BareLoad::BareLoad(LoadTarget target) : target_(std::move(target)) {}

RunResult BareLoad::Run()
{
    // Before any thread exists: libcurl's global set-up is not thread-safe.
    RunResult result;
    result.name = "bare";
    result.requests = target_.requests;
    result.concurrency = target_.concurrency;
    if (curl_global_init(CURL_GLOBAL_ALL) != CURLE_OK) {
        return result;
    }
    const ProcessStatus cold = ProcessStatus::Read();
    (void)Drive(WarmUpRequests(target_), target_.concurrency);
    std::this_thread::sleep_for(SETTLE_PAUSE);
    const ProcessStatus start = ReadAtRest(REST_LIMIT);
    PeakSampler sampler(SAMPLE_PERIOD);
    const double cpuBefore = ProcessCpuMilliseconds();
    Outcome outcome = Drive(target_.requests, target_.concurrency);
    const double cpuUsed = ProcessCpuMilliseconds() - cpuBefore;
    const ProcessStatus peak = sampler.Stop();
    std::this_thread::sleep_for(SETTLE_PAUSE);
    const ProcessStatus idle = ReadAtRest(REST_LIMIT);

    result.answered = outcome.answered;
    result.failed = outcome.failed;
    result.seconds = outcome.seconds;
    result.throughput = outcome.seconds > 0 ? static_cast<double>(outcome.answered) / outcome.seconds : 0;
    result.latencyMs = LatencySummary::Of(std::move(outcome.latencyMs));
    result.cpuMsPerRequest = cpuUsed / static_cast<double>(target_.requests);
    // The client threads, the main thread and the sampler.
    result.SetProcessFigures(cold, start, peak, idle, std::min(target_.requests, target_.concurrency) + 2);
    return result;
}

BareLoad::Outcome BareLoad::Drive(size_t requests, size_t concurrency) const
{
    std::atomic<size_t> next {0};
    std::mutex mutex;
    Outcome outcome;
    outcome.latencyMs.reserve(requests);
    Clock::time_point lastAnswer {};
    auto work = [&]() {
        for (size_t index = next++; index < requests; index = next++) {
            const Clock::time_point called = Clock::now();
            const long status = Post(index);
            const Clock::time_point answered = Clock::now();
            std::lock_guard<std::mutex> lock(mutex);
            lastAnswer = std::max(lastAnswer, answered);
            // A transfer that failed counts as answered and failed, as the service's failure
            // response would.
            ++outcome.answered;
            outcome.failed += status == HTTP_OK ? 0 : 1;
            outcome.latencyMs.push_back(Milliseconds(answered - called));
        }
    };
    const Clock::time_point firstCall = Clock::now();
    std::vector<std::thread> clients;
    for (size_t i = 0; i < std::min(concurrency, requests); ++i) {
        clients.emplace_back(work);
    }
    for (std::thread &client : clients) {
        client.join();
    }
    outcome.seconds = Milliseconds(lastAnswer - firstCall) / 1000.0;
    return outcome;
}

long BareLoad::Post(size_t index) const
{
    const BenchRequest request = MakeBenchRequest(index);
    std::unique_ptr<CURL, CurlDeleter> curl(curl_easy_init());
    if (curl == nullptr) {
        return 0;
    }
    std::unique_ptr<curl_slist, SlistDeleter> headers;
    for (const std::string &line : request.requestHeaders) {
        if (curl_slist *list = curl_slist_append(headers.get(), line.c_str())) {
            (void)headers.release();
            headers.reset(list);
        }
    }
    const std::string url = target_.baseUrl + QUERY_PATH + "?" + request.queryHeaders;
    const std::string body = PostBody(request);
    std::string responseHeads;
    std::string responseBody;
    CURL *handle = curl.get();
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body.c_str());
    curl_easy_setopt(handle, CURLOPT_POST, 1L);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, Collect);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &responseHeads);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, Collect);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &responseBody);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_HTTPAUTH, CURLAUTH_ANY);
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, HttpLogic::ALLOWED_PROTOCOLS);
    curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, HttpLogic::ALLOWED_PROTOCOLS);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, HttpLogic::VERIFY_HOST_NAME);
    curl_easy_setopt(handle, CURLOPT_CAINFO, target_.caFile.c_str());
    curl_easy_setopt(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    curl_easy_setopt(handle, CURLOPT_SSL_CIPHER_LIST, HttpLogic::CIPHER_LIST);
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle, CURLOPT_MAXREDIRS, HttpLogic::MAX_REDIRECTS);
    curl_easy_setopt(handle, CURLOPT_AUTOREFERER, 1L);
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "gzip");
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, HttpLogic::CONNECT_TIMEOUT_SECONDS);
    curl_easy_setopt(handle, CURLOPT_TIMEOUT, HttpLogic::TRANSFER_TIMEOUT_SECONDS);
    if (curl_easy_perform(handle) != CURLE_OK) {
        return 0;
    }
    long status = 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
    return status;
}
} // namespace VornBench
