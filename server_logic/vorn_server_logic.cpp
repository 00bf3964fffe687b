#include "vorn_server_logic.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <list>
#include <utility>

#include <nlohmann/json.hpp>

#include "callback_parcel_limit.h"
#include "ffrt_inner.h"
#include "json_utils.h"
#include "string_utils.h"
#include "time_utils.h"
#include "vorn_error_code.h"
#include "vorn_http_logic.h"
#include "vorn_log.h"
#include "vorn_metrics.h"
#include "vorn_thread.h"

namespace OHOS {
namespace Vorn {
namespace {
constexpr uint64_t REQUEST_BUDGET_MS = 9000;
constexpr std::chrono::seconds ATTEMPT_WAIT(1);
constexpr std::chrono::seconds JOB_WAIT(10);
constexpr int32_t TASK_NUMBER_MODULUS = 10000;
constexpr long HTTP_OK = 200;
constexpr const char *GNS_SA_TYPE = "gns";
constexpr const char *SERVER_CONFIG_PATH = "system/etc/tarnix/vorn_depot/qel_sdk_server_config.json";
constexpr const char *MESSAGE_SUCCESS = "Request success";
constexpr const char *MESSAGE_INIT_FAILED = "InitHttpLogic failed";
constexpr const char *MESSAGE_POST_FAILED = "PostHttpsRequest failed";
constexpr const char *MESSAGE_CONFIG_FAILED = "Parse default server config file failed.";
constexpr const char *MESSAGE_GLOBAL_INIT_FAILED = "HttpLogic globalInit failed";
constexpr const char *MESSAGE_TOO_LARGE = "Response too large";
constexpr size_t MAX_RESPONSE_SIZE = CallbackParcelLimit::MAX_RESPONSE_SIZE;

const std::string CURL_TASK_PREFIX = "vorn_curl_task";
const std::string HTTP_TASK_PREFIX = "vorn_http_task";

// Numbers every task the engine posts. Names are labels only, so wrapping is harmless.
std::atomic<int32_t> g_taskSequence {0};

std::string NextTaskName(const std::string &prefix)
{
    int32_t sequence = g_taskSequence.fetch_add(1, std::memory_order_relaxed) + 1;
    return prefix + std::to_string(sequence % TASK_NUMBER_MODULUS);
}

bool BudgetExceeded(uint64_t requestStartTime)
{
    // Unsigned on purpose: a clock stepped back makes the difference huge, which ends the walk.
    uint64_t elapsed = static_cast<uint64_t>(TimeUtils::GetTimeMills()) - requestStartTime;
    return elapsed > REQUEST_BUDGET_MS;
}

// Sends one response; `code` is its "code" member, counted for the service's dump.
void Deliver(const sptr<IVornRequestCallback> &callback, int64_t code, const std::string &response)
{
    if (callback != nullptr) {
        VornMetrics::CountResponse(code);
        callback->OnResponse(response);
    }
}

std::string Serialise(const nlohmann::json &response)
{
    return response.dump(-1, ' ', false, nlohmann::json::error_handler_t::strict);
}

// A task's exception (say, a response that is not valid UTF-8) stays in its future; here it
// turns into a plain failure so that nothing a server sends can take the service down.
template <typename T, typename CodeOf> int32_t CollectCode(ffrt::future<T> &future, const char *what, CodeOf codeOf)
{
    try {
        return codeOf(future.get());
    } catch (const std::exception &e) {
        VORN_LOGE("VornServerLogic %{public}s failed with exception: %{public}s", what, e.what());
    } catch (...) {
        VORN_LOGE("VornServerLogic %{public}s failed with an unknown exception", what);
    }
    return ERR_FAILED;
}

int32_t CollectAttempt(ffrt::future<VornServerLogic::VornRequestResult> &future)
{
    return CollectCode(future, "attempt", [](const VornServerLogic::VornRequestResult &result) { return result.code; });
}

nlohmann::json ResponseJson(int64_t code, const std::string &message, const std::string &header,
    const std::string &body, const std::shared_ptr<VornServerLogic::VornRequestStatistics> &statistics)
{
    nlohmann::json response;
    response["code"] = code;
    response["message"] = message;
    response["header"] = header;
    response["body"] = body;
    if (statistics != nullptr && statistics->hasStatistics) {
        nlohmann::json timing;
        timing["req_domain"] = statistics->domain;
        timing["req_error_code"] = statistics->errorCode;
        timing["req_start_time"] = statistics->startTime;
        timing["req_end_time"] = statistics->endTime;
        timing["req_wait_time"] = statistics->startTime - statistics->submitTime;
        timing["req_total_time"] = statistics->endTime - statistics->startTime;
        response["statistics"] = std::move(timing);
    }
    return response;
}

// The exchange with the server has happened and answered `status`.
void StampExchange(VornServerLogic::VornRequestStatistics &statistics, long status)
{
    statistics.hasStatistics = true;
    statistics.errorCode = std::to_string(status);
    statistics.endTime = static_cast<uint64_t>(TimeUtils::GetTimeMills());
}

// What a response takes besides its header and body texts, at least: the shortest variant, a
// success that ends in the millisecond it started. The transfer is bounded by what is left.
size_t ResponseOverhead(const VornServerLogic::VornRequestStatistics &statistics)
{
    auto success = std::make_shared<VornServerLogic::VornRequestStatistics>(statistics);
    success->hasStatistics = true;
    success->errorCode = std::to_string(HTTP_OK);
    success->endTime = success->startTime;
    return Serialise(ResponseJson(HTTP_OK, MESSAGE_SUCCESS, "", "", success)).size();
}

// A response the client's callback cannot carry turns into this failure. The server did answer,
// so the client hears of it whichever URL this was, and the next URL may still do better.
void FailTooLarge(const sptr<IVornRequestCallback> &callback, long status, size_t reached,
    const std::shared_ptr<VornServerLogic::VornRequestStatistics> &statistics)
{
    VORN_LOGE("VornServerLogic response too large: %{public}lu bytes reached, %{public}lu fit",
        static_cast<unsigned long>(reached), static_cast<unsigned long>(MAX_RESPONSE_SIZE));
    StampExchange(*statistics, status);
    VornMetrics::Add(VornMetrics::Counter::RESPONSES_TOO_LARGE);
    Deliver(callback, ERR_FAILED, VornServerLogic::GetResponse(ERR_FAILED, MESSAGE_TOO_LARGE, "", "", statistics));
}

// The last guard, for what the transfer could not foresee (say, synthetic heads grown large from
// the request): false when the too-large failure went out instead of `response`.
bool DeliverIfItFits(const sptr<IVornRequestCallback> &callback, long status, const std::string &response,
    const std::shared_ptr<VornServerLogic::VornRequestStatistics> &statistics)
{
    if (response.size() > MAX_RESPONSE_SIZE) {
        FailTooLarge(callback, status, response.size(), statistics);
        return false;
    }
    Deliver(callback, status, response);
    return true;
}
} // namespace

VornServerLogic::VornServerLogic(const VornInitConfigParser::VornRequestInfo &info) : requestInfo_(info) {}

int32_t VornServerLogic::GetAllServiceUrl(const sptr<IVornRequestCallback> &callback)
{
    VORN_LOGI("VornServerLogic::GetAllServiceUrl enter");
    callback_ = callback;
    if (requestInfo_.saType != GNS_SA_TYPE && requestInfo_.baseUrls.empty() && ParseDefaultConfigFile() != SUCCESS) {
        return FailEarly(MESSAGE_CONFIG_FAILED);
    }
    if (!HttpLogic::GlobalInit()) {
        VORN_LOGE("VornServerLogic::GetAllServiceUrl globalInit failed");
        return FailEarly(MESSAGE_GLOBAL_INIT_FAILED);
    }
    requestStartTime_ = static_cast<uint64_t>(TimeUtils::GetTimeMills());

    ffrt::future<VornErrorCodeType> job = VornThread::GetThreadPool(HTTP_POOL)->Submit(
        [info = requestInfo_, callback = callback_, startTime = requestStartTime_]() {
            return static_cast<VornErrorCodeType>(SubmitRequestTask(info, callback, startTime));
        },
        NextTaskName(HTTP_TASK_PREFIX));
    if (job.wait_until(std::chrono::steady_clock::now() + JOB_WAIT) != ffrt::future_status::ready) {
        VORN_LOGW("VornServerLogic::GetAllServiceUrl futrue wait timeout");
        VornMetrics::Add(VornMetrics::Counter::JOB_WAIT_TIMEOUTS);
        return ERR_FAILED;
    }
    int32_t code = CollectCode(job, "request job", [](VornErrorCodeType result) { return result; });
    if (code != SUCCESS) {
        VORN_LOGW("VornServerLogic::GetAllServiceUrl futrue not OK");
        return code;
    }
    VORN_LOGI("VornServerLogic::GetAllServiceUrl success");
    return SUCCESS;
}

int32_t VornServerLogic::FailEarly(const std::string &message) const
{
    nlohmann::json response;
    response["header"] = "";
    response["body"] = "";
    response["code"] = ERR_FAILED;
    response["message"] = message;
    Deliver(callback_, ERR_FAILED, Serialise(response));
    return ERR_FAILED;
}

int32_t VornServerLogic::ParseDefaultConfigFile()
{
    nlohmann::json json;
    JsonUtils::FileStatus status = JsonUtils::ReadFile(SERVER_CONFIG_PATH, json);
    if (status == JsonUtils::FileStatus::UNREADABLE) {
        VORN_LOGE("VornServerLogic read the service configure failed");
        return ERR_FAILED;
    }
    if (status == JsonUtils::FileStatus::MALFORMED) {
        VORN_LOGE("VornServerLogic parse the service configure file failed.");
        return ERR_FAILED;
    }
    try {
        VornInitConfigParser::ServerConfig config;
        VornInitConfigParser::ServerConfigFromJson(json, config);
        for (std::string &url : config.qelBaseUrls) {
            url += config.qelQueryEndpoint;
        }
        requestInfo_.baseUrls = std::move(config.qelBaseUrls);
    } catch (...) {
        VORN_LOGE("VornServerLogic, Parse json catch exception");
        return ERR_FAILED;
    }
    return SUCCESS;
}

int32_t VornServerLogic::SubmitRequestTask(VornInitConfigParser::VornRequestInfo info,
    const sptr<IVornRequestCallback> &callback, uint64_t requestStartTime)
{
    if (BudgetExceeded(requestStartTime)) {
        VORN_LOGW("SubmitRequestTask:: time to return:%{public}lu", static_cast<unsigned long>(requestStartTime));
        VornMetrics::Add(VornMetrics::Counter::WALKS_OVER_BUDGET);
        return ERR_FAILED;
    }
    if (info.baseUrls.empty()) {
        return ERR_FAILED;
    }
    int32_t lastCode = ERR_FAILED;
    uint64_t attemptIndex = 0;
    // Attempts still running when their wait ended: never cancelled, collected in order at the end.
    std::list<ffrt::future<VornRequestResult>> pendingFutures;
    for (const std::string &url : info.baseUrls) {
        if (BudgetExceeded(requestStartTime)) {
            VORN_LOGW("SubmitRequestTask:: time to return:%{public}lu", static_cast<unsigned long>(requestStartTime));
            VornMetrics::Add(VornMetrics::Counter::WALKS_OVER_BUDGET);
            return ERR_FAILED;
        }
        auto statistics = std::make_shared<VornRequestStatistics>();
        statistics->submitTime = static_cast<uint64_t>(TimeUtils::GetTimeMills());
        statistics->domain = StringUtils::GetDomainFromUrl(url);
        ++attemptIndex;
        ffrt::future<VornRequestResult> attempt =
            VornThread::GetThreadPool(HTTP_POOL)
                ->Submit([info, callback, url, attemptIndex,
                             statistics]() { return ThreadFunc(info, callback, url, attemptIndex, statistics); },
                    NextTaskName(CURL_TASK_PREFIX));
        if (attempt.wait_until(std::chrono::steady_clock::now() + ATTEMPT_WAIT) != ffrt::future_status::ready) {
            VORN_LOGI("SubmitRequestTask:: next");
            VornMetrics::Add(VornMetrics::Counter::ATTEMPTS_OVERTAKEN);
            pendingFutures.push_back(std::move(attempt));
            continue;
        }
        int32_t code = CollectAttempt(attempt);
        if (code == SUCCESS) {
            VORN_LOGI("SubmitRequestTask::success");
            return SUCCESS;
        }
        VORN_LOGW("SubmitRequestTask::fail %{public}d", code);
        lastCode = code;
    }
    for (auto &attempt : pendingFutures) {
        lastCode = CollectAttempt(attempt);
        if (lastCode == SUCCESS) {
            return SUCCESS;
        }
    }
    return lastCode;
}

VornServerLogic::VornRequestResult VornServerLogic::ThreadFunc(VornInitConfigParser::VornRequestInfo info,
    const sptr<IVornRequestCallback> &callback, std::string url, uint64_t attemptIndex,
    std::shared_ptr<VornRequestStatistics> statistics)
{
    statistics->startTime = static_cast<uint64_t>(TimeUtils::GetTimeMills());
    VornMetrics::Add(VornMetrics::Counter::ATTEMPTS);
    VornMetrics::InFlight inFlight(VornMetrics::Gauge::ATTEMPTS_IN_FLIGHT);
    const bool isLastUrl = attemptIndex == info.baseUrls.size();
    auto httpLogic = std::make_shared<HttpLogic>(info, url);
    int initCode = httpLogic->InitHttpLogic();
    if (initCode != 0) {
        VORN_LOGI("VornServerLogic::InitHttpLogic failed:%{public}d", initCode);
        if (isLastUrl) {
            statistics->hasStatistics = false;
            Deliver(callback, ERR_FAILED, GetResponse(ERR_FAILED, MESSAGE_INIT_FAILED, "", "", statistics));
        }
        return {initCode, ""};
    }

    const size_t overhead = ResponseOverhead(*statistics);
    httpLogic->LimitResponseSize(overhead < MAX_RESPONSE_SIZE ? MAX_RESPONSE_SIZE - overhead : 0);
    long status = httpLogic->PostHttpsRequest();
    if (httpLogic->ResponseTooLarge()) {
        FailTooLarge(callback, httpLogic->GetResponseStatus(), overhead + httpLogic->ResponseSizeReached(), statistics);
        return {ERR_FAILED, ""};
    }
    std::string header = httpLogic->GetResponseHeads();
    std::string body = httpLogic->GetResponseBody();
    if (status != HTTP_OK) {
        VORN_LOGI("VornServerLogic::PostHttpsRequest failed:%{public}ld", status);
        if (!isLastUrl) {
            return {ERR_FAILED, ""};
        }
        StampExchange(*statistics, status);
        (void)DeliverIfItFits(callback, status, GetResponse(status, MESSAGE_POST_FAILED, header, body, statistics),
            statistics);
        return {ERR_FAILED, ""};
    }

    VORN_LOGI("VornServerLogic::curl request success, to response");
    StampExchange(*statistics, HTTP_OK);
    if (!DeliverIfItFits(callback, HTTP_OK, GetResponse(HTTP_OK, MESSAGE_SUCCESS, header, body, statistics),
            statistics)) {
        return {ERR_FAILED, ""};
    }
    return {SUCCESS, ""};
}

std::string VornServerLogic::GetResponse(int64_t code, const std::string &message, const std::string &header,
    const std::string &body, const std::shared_ptr<VornRequestStatistics> &statistics)
{
    VORN_LOGI("VornServerLogic::GetResponse with code:%{public}ld", static_cast<long>(code));
    return Serialise(ResponseJson(code, message, header, body, statistics));
}
} // namespace Vorn
} // namespace OHOS
