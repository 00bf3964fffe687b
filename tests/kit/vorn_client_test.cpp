#include <atomic>
#include <chrono>
#include <future>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "errors.h"
#include "eventhandler_host.h"
#include "ffrt_host.h"
#include "hilog_host.h"
#include "https_fixture.h"
#include "ipc_host.h"
#include "ipc_types.h"
#include "iservice_registry.h"
#include "log_lines.h"
#include "message_option.h"
#include "message_parcel.h"
#include "omsa_log.h"
#include "samgr_host.h"
#include "vorn_client.h"
#include "vorn_error_code.h"
#include "vorn_init_config_parser.h"
#include "vorn_request_callback_stub.h"
#include "vorn_sa.h"
#include "vorn_sa_id.h"

using namespace OHOS;
using namespace OHOS::Vorn;
using namespace std::chrono_literals;
using HostPlatform::LogCapture;
using HostPlatform::ScopedCallerIdentity;

namespace {
constexpr pid_t APP_UID = 20010077;
constexpr char LATE_RESPONSE_LINE[] = "VornClient response for a request no longer waiting, dropped";

// What a client's handlers heard of one request.
class Outcome {
public:
    VornClient::ResponseHandler OnResponse()
    {
        return [this](const VornResponse &response) {
            std::lock_guard<std::mutex> lock(mutex_);
            responses_.push_back(response);
            changed_.notify_all();
        };
    }
    VornClient::ServiceDiedHandler OnServiceDied()
    {
        return [this]() { ++deaths_; };
    }
    bool WaitForResponses(size_t count, std::chrono::milliseconds timeout)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, timeout, [this, count]() { return responses_.size() >= count; });
    }
    std::vector<VornResponse> Responses()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return responses_;
    }
    int Deaths() const { return deaths_; }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<VornResponse> responses_;
    std::atomic<int> deaths_ {0};
};

sptr<ISystemAbilityManager> Samgr()
{
    return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
}

// The real service, published afresh under its own id, as after a (re)start of its process.
sptr<VornSA> PublishService()
{
    sptr<VornSA> sa = new VornSA(VORN_SA_ID, true);
    EXPECT_EQ(Samgr()->AddSystemAbility(VORN_SA_ID, sa), ERR_OK);
    return sa;
}

class VornClientTest : public VornTest::HttpsFixture {
protected:
    void SetUp() override
    {
        VornTest::HttpsFixture::SetUp();
        server_->Respond("/ok", VornTestbed::HttpResponse::Text(200, R"({"answer":"é"})"));
        service_ = PublishService();
    }

    VornRequest RequestTo(const std::string &path) const
    {
        VornRequest request;
        request.baseUrls = {Url(path)};
        request.caFile = files_.caFile;
        request.appVersion = "7.1";
        request.queryHeaders = "appId=42";
        request.requestHeaders = {"X-Client: kit"};
        request.requestBody = {"alpha", "beta"};
        return request;
    }

    sptr<VornSA> service_;
    LogCapture logs_;
};

TEST_F(VornClientTest, RequestGetsTypedResponsesAndTheServerTheClientsRequest)
{
    VornClient client;
    Outcome outcome;
    ASSERT_EQ(client.Request(RequestTo("/ok"), outcome.OnResponse(), outcome.OnServiceDied()), SUCCESS);
    ASSERT_TRUE(outcome.WaitForResponses(1, 15s));

    const VornResponse response = outcome.Responses().front();
    EXPECT_TRUE(response.IsSuccess());
    EXPECT_EQ(response.message, "Request success");
    EXPECT_EQ(response.body, R"({"answer":"é"})");
    EXPECT_NE(response.header.find("Version: 7.1"), std::string::npos) << response.header;
    ASSERT_TRUE(response.statistics.has_value());
    EXPECT_EQ(response.statistics->domain, "127.0.0.1");
    EXPECT_EQ(response.statistics->errorCode, "200");
    EXPECT_LE(response.statistics->startTime, response.statistics->endTime);
    EXPECT_EQ(response.statistics->totalTime, response.statistics->endTime - response.statistics->startTime);

    const auto requests = server_->Requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].query, "appId=42");
    EXPECT_EQ(requests[0].Header("X-Client"), "kit");
    EXPECT_EQ(nlohmann::json::parse(requests[0].body), nlohmann::json({{"services", {"alpha", "beta"}}}));
    EXPECT_EQ(outcome.Deaths(), 0);
}

// Refusals come back as the service's codes; an accepted event carries the caller's uid.
TEST_F(VornClientTest, ResultsAreTheServicesCodesAndAnEventCarriesTheCallersUid)
{
    VornTest::OmsaLog omsa;
    VornTest::ScopedEnv accept("VORN_OMSA_RESULT", std::nullopt);
    VornClient client;
    {
        ScopedCallerIdentity app(HostPlatform::AppCaller(APP_UID));
        EXPECT_EQ(client.Request(RequestTo("/ok"), nullptr), ILLEGAL_APP_CALLING);
        EXPECT_EQ(client.ReportEvent("evt", "{}"), ILLEGAL_APP_CALLING);
    }
    VornRequest notUtf8;
    notUtf8.appVersion = "\xff";
    EXPECT_EQ(client.Request(notUtf8, nullptr), ERR_PARCEL_READ_PARAM);
    EXPECT_EQ(server_->RequestCount(), 0u);
    {
        ScopedCallerIdentity app(HostPlatform::SystemAppCaller(APP_UID));
        const std::map<std::string, std::string> content = {{"screen", "home"}, {"kitUid", "forged"}};
        EXPECT_EQ(client.ReportEvent("evt.kit", content), SUCCESS);
    }
    ASSERT_TRUE(HostPlatform::EventRunnersWaitIdle(5s));
    const auto events = omsa.Calls("OnEvent");
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0]["eventId"], "evt.kit");
    EXPECT_EQ(events[0]["data"], nlohmann::json({{"screen", "home"}, {"kitUid", std::to_string(APP_UID)}}));
}

// A client whose response window has passed hears of neither the death nor the answer.
TEST_F(VornClientTest, ServiceDeathMidRequestIsToldOnceInTheWindowAndTheNextCallLoadsItAgain)
{
    std::promise<void> release;
    server_->Handle("/held", [released = release.get_future().share()](const VornTestbed::HttpRequest &) {
        released.wait();
        return VornTestbed::HttpResponse::Text(200, "late answer");
    });
    VornClient client;
    VornClient::Options options;
    options.responseWindow = 0ms;
    VornClient pastWindow(options);
    Outcome held;
    Outcome late;
    ASSERT_EQ(client.Request(RequestTo("/held"), held.OnResponse(), held.OnServiceDied()), SUCCESS);
    ASSERT_EQ(pastWindow.Request(RequestTo("/held"), late.OnResponse(), late.OnServiceDied()), SUCCESS);
    ASSERT_TRUE(server_->WaitForRequests(2, 10s));

    ASSERT_TRUE(HostPlatform::KillSystemAbility(VORN_SA_ID));
    EXPECT_EQ(held.Deaths(), 1);
    EXPECT_EQ(late.Deaths(), 0);
    // The old engine still answers on the host; the clients must not hear of it any more.
    release.set_value();
    EXPECT_TRUE(logs_.WaitFor(LATE_RESPONSE_LINE, 15s, 2));
    EXPECT_TRUE(held.Responses().empty());
    EXPECT_TRUE(late.Responses().empty());

    // Nothing published now: the kit asks the manager to load the ability, which starts the one
    // the service library registered.
    Outcome next;
    ASSERT_EQ(client.Request(RequestTo("/ok"), next.OnResponse(), next.OnServiceDied()), SUCCESS);
    ASSERT_TRUE(next.WaitForResponses(1, 15s));
    EXPECT_TRUE(next.Responses().front().IsSuccess());
    EXPECT_NE(Samgr()->CheckSystemAbility(VORN_SA_ID), nullptr);
    EXPECT_EQ(held.Deaths(), 1);
    EXPECT_EQ(next.Deaths(), 0);
}

TEST(VornRequestTest, JsonReadsBackThroughTheServicesParserFieldForField)
{
    const VornRequest request {{"https://b.example", "https://a.example"}, {"A: 1", "B: 2"}, "x=1&y=2", {"svc"},
        "/etc/ca.pem", "wlan0", "3.0", "gns", 2500, {"http://proxy:8080", "localhost", "user", "secret"}};

    VornInitConfigParser::VornRequestInfo info;
    VornInitConfigParser::FromJson(nlohmann::json::parse(request.ToJson()), info);
    EXPECT_EQ(std::tie(info.baseUrls, info.requestHeaders, info.queryHeaders, info.requestBody, info.caFile,
                  info.interfaceName, info.appVersion, info.saType, info.requestTimeOut),
        std::tie(request.baseUrls, request.requestHeaders, request.queryHeaders, request.requestBody, request.caFile,
            request.interfaceName, request.appVersion, request.saType, request.requestTimeOut));
    const VornInitConfigParser::HttpProxyInfo &proxy = info.proxyInfo;
    EXPECT_EQ(std::tie(proxy.proxyUrl, proxy.noProxyUrls, proxy.proxyUserName, proxy.proxyPassword),
        std::tie(request.proxy.url, request.proxy.noProxyUrls, request.proxy.userName, request.proxy.password));

    EXPECT_EQ(VornRequest().ToJson(), "{}");
}

TEST(VornResponseTest, ReadsEveryVariantTheServiceSendsAndRefusesOthers)
{
    const auto success = VornResponse::FromJson(
        R"({"body":"b","code":200,"header":"h","message":"Request success","statistics":{"req_domain":"d",)"
        R"("req_end_time":30,"req_error_code":"200","req_start_time":10,"req_total_time":20,"req_wait_time":5}})");
    ASSERT_TRUE(success.has_value());
    ASSERT_TRUE(success->statistics.has_value());
    EXPECT_EQ(success->statistics->waitTime, 5u);
    EXPECT_EQ(success->statistics->totalTime, 20u);

    const auto early = VornResponse::FromJson(
        R"({"body":"","code":-1,"header":"","message":"Parse default server config file failed."})");
    ASSERT_TRUE(early.has_value());
    EXPECT_EQ(early->code, -1);
    EXPECT_FALSE(early->IsSuccess());
    EXPECT_FALSE(early->statistics.has_value());

    EXPECT_FALSE(VornResponse::FromJson("not json").has_value());
    EXPECT_FALSE(VornResponse::FromJson(R"({"code":"200"})").has_value());
    EXPECT_FALSE(VornResponse::FromJson(R"({"code":200,"statistics":[]})").has_value());
}

TEST(VornRequestCallbackStubTest, WrongTokenIsRefusedAndTheRightOneDelivers)
{
    std::vector<std::string> heard;
    sptr<VornRequestCallbackStub> stub =
        new VornRequestCallbackStub([&heard](const std::string &response) { heard.push_back(response); });
    sptr<IRemoteObject> remote = HostPlatform::MakeRemoteProxy(stub->AsObject());
    LogCapture logs;

    auto send = [&remote](const std::u16string &token) {
        MessageParcel data;
        MessageParcel reply;
        MessageOption option;
        data.WriteInterfaceToken(token);
        data.WriteString("{\"code\":200}");
        return remote->SendRequest(IVornRequestCallback::ON_RESPONSE, data, reply, option);
    };
    EXPECT_EQ(send(u"OHOS.Vorn.IVornRequestCallbacK"), ERR_INVALID_DATA);
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(VornTest::ServiceLines(logs, LOG_ERROR, "VornRequestCallbackStub read interface token failed"), 1u);

    EXPECT_EQ(send(IVornRequestCallback::GetDescriptor()), ERR_NONE);
    EXPECT_EQ(heard, std::vector<std::string>({"{\"code\":200}"}));
}
} // namespace
