#include <chrono>
#include <future>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "eventhandler_host.h"
#include "ffrt_host.h"
#include "hilog_host.h"
#include "https_fixture.h"
#include "ipc_host.h"
#include "ipc_types.h"
#include "log_lines.h"
#include "omsa_log.h"
#include "raw_service_client.h"
#include "response_recorder.h"
#include "vorn_error_code.h"
#include "vorn_sa.h"

using namespace OHOS;
using namespace OHOS::Vorn;
using namespace std::chrono_literals;
using HostPlatform::LogCapture;
using HostPlatform::ScopedCallerIdentity;
using VornTest::ResponseRecorder;
using VornTest::ServiceLines;
using VornTools::CallResult;
using VornTools::RawServiceClient;

namespace {
constexpr pid_t APP_UID = 20010042;
constexpr uint32_t UNKNOWN_CODE = 7;
const std::u16string TOKEN = IVornSAInterface::GetDescriptor();

// The service as a client process reaches it: through a proxy, so that parcels are copied and
// the caller identity set on this thread travels with each call.
class StubFixture {
protected:
    sptr<VornSA> sa_ = new VornSA(VORN_SA_ID, true);
    RawServiceClient client_ {HostPlatform::MakeRemoteProxy(sa_)};
    sptr<ResponseRecorder> recorder_ = new ResponseRecorder();
    LogCapture logs_;
};

class VornSAStubTest : public testing::Test, protected StubFixture {};

TEST_F(VornSAStubTest, OrdinaryAppsAreRefusedForEveryCodeBeforeTheTokenIsRead)
{
    {
        ScopedCallerIdentity app(HostPlatform::AppCaller(APP_UID));
        const std::u16string badToken = u"not.the.token";
        for (const CallResult &result :
            {client_.Request("{}", recorder_, badToken), client_.Event(R"({"eventId":"e"})", badToken),
                client_.Request("{}", recorder_, badToken, UNKNOWN_CODE)}) {
            EXPECT_EQ(result.result, ILLEGAL_APP_CALLING);
            EXPECT_EQ(result.reply, ILLEGAL_APP_CALLING);
        }
    }
    EXPECT_EQ(ServiceLines(logs_, LOG_WARN, "The caller is not a system application."), 3u);
    EXPECT_FALSE(logs_.Contains("read descriptor failed."));

    // Native services and system apps get past the check, to the decoder, which turns down a
    // lone brace.
    for (const auto &identity : {HostPlatform::NativeCaller(1000), HostPlatform::SystemAppCaller(APP_UID)}) {
        ScopedCallerIdentity caller(identity);
        EXPECT_EQ(client_.Event("{").result, ERR_PARCEL_READ_PARAM);
    }
    EXPECT_EQ(ServiceLines(logs_, LOG_WARN, "The caller is not a system application."), 3u);
}

TEST_F(VornSAStubTest, WrongOrMissingTokenGetsThreeAndUnknownCodeThePlatformDefault)
{
    for (const std::u16string &token : {std::u16string(u"ohos.vorn.IVornSAInterfacf"),
             std::u16string(u"ohos.vorn.IVornSAInterfac"), std::u16string(u"ohos.vorn.IVornSAInterface."),
             std::u16string(u"OHOS.Vorn.IVornSAInterface"), std::u16string()}) {
        CallResult request = client_.Request(R"({"saType":"gns"})", recorder_, token);
        CallResult event = client_.Event(R"({"eventId":"e"})", token);
        EXPECT_EQ(request.result, ERR_READ_DESCRIPTOR);
        EXPECT_EQ(event.result, ERR_READ_DESCRIPTOR);
        EXPECT_FALSE(request.reply.has_value());
        EXPECT_FALSE(event.reply.has_value());
    }
    EXPECT_EQ(ServiceLines(logs_, LOG_ERROR, "read descriptor failed."), 10u);
    EXPECT_FALSE(logs_.Contains("VornSAStub::PostVornRequest in"));

    // An unknown code with the right token gets the platform's default.
    CallResult unknown = client_.Request("{}", recorder_, TOKEN, UNKNOWN_CODE);
    EXPECT_EQ(unknown.result, IPC_STUB_UNKNOW_TRANS_ERR);
    EXPECT_FALSE(unknown.reply.has_value());
}

// Requests and events that cannot be decoded answer four and start nothing; a malformed event,
// unlike a request, leaves the reply empty.
TEST_F(VornSAStubTest, UndecodableParametersAnswerFourAndPostNothing)
{
    VornTest::OmsaLog omsa;
    struct Case {
        bool event;
        std::string paramStr;
        std::string error;
        bool replyWritten = true;
        bool withCallback = true;
    };
    const std::vector<Case> cases = {
        {false, "{}", "remoteObject is null", true, false},
        {false, "", "remoteObject is null", true, false}, // the callback is read and tested before the text
        {false, "", "paramStr is null"},
        {false, R"({"baseUrls":)", "VornSAStub::PostVornRequest json accept failed"},
        {false, R"(/* no comments */ {})", "VornSAStub::PostVornRequest json accept failed"},
        {false, R"({"baseUrls":"x"})", "VornSAStub::PostVornRequest json parse failed"},
        {false, R"({"caFile":null})", "VornSAStub::PostVornRequest json parse failed"},
        {true, "", "paramStr is null"},
        {true, "{", "VornSAStub::VornOmsaEvent json accept failed", false},
        {true, R"({"eventId":7})", "VornSAStub::VornOmsaEvent json parse failed", false},
        {true, R"({"eventId":"e","content":{"k":"v"}})", "VornSAStub::VornOmsaEvent json parse failed", false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.paramStr);
        logs_.Clear();
        CallResult result =
            c.event ? client_.Event(c.paramStr) : client_.Request(c.paramStr, c.withCallback ? recorder_ : nullptr);
        EXPECT_EQ(result.result, ERR_PARCEL_READ_PARAM);
        EXPECT_EQ(result.reply, c.replyWritten ? std::optional<int32_t>(ERR_PARCEL_READ_PARAM) : std::nullopt);
        EXPECT_EQ(ServiceLines(logs_, LOG_ERROR, c.error), 1u);
        EXPECT_EQ(VornTest::CountLevel(logs_, LOG_ERROR, "VornService"), 1u);
        EXPECT_FALSE(logs_.Contains("VornSAStub::PostVornRequest out"));
    }
    EXPECT_EQ(recorder_->Count(), 0u);
    EXPECT_TRUE(HostPlatform::EventRunnersWaitIdle(5s));
    EXPECT_TRUE(omsa.Calls("OnEvent").empty());
}

TEST_F(VornSAStubTest, EventWithOnlyAnIdIsReportedWithTheCallerUid)
{
    VornTest::OmsaLog omsa;
    VornTest::ScopedEnv accept("VORN_OMSA_RESULT", std::nullopt);
    VornTest::ScopedEnv hidePrivate("VORN_HILOG_PRIVATE", std::nullopt);
    {
        ScopedCallerIdentity app(HostPlatform::SystemAppCaller(APP_UID));
        CallResult result = client_.Event(R"({"eventId":"evt.open"})");
        EXPECT_EQ(result.result, SUCCESS);
        EXPECT_EQ(result.reply, SUCCESS);
    }
    EXPECT_EQ(ServiceLines(logs_, LOG_INFO, "VornOmsaEvent eventId:evt.open, content:<private>"), 1u);
    ASSERT_TRUE(HostPlatform::EventRunnersWaitIdle(5s));
    const auto events = omsa.Calls("OnEvent");
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0]["eventId"], "evt.open");
    EXPECT_EQ(events[0]["data"], nlohmann::json({{"kitUid", std::to_string(APP_UID)}}));
}

// A request whose server holds its answer: the IPC call must not wait for it.
class VornSAStubNetworkTest : public VornTest::HttpsFixture, protected StubFixture {};

TEST_F(VornSAStubNetworkTest, WellFormedRequestIsAnsweredBeforeAnyResponse)
{
    std::promise<void> release;
    std::shared_future<void> released = release.get_future().share();
    server_->Handle("/slow", [released](const VornTestbed::HttpRequest &) {
        released.wait_for(5s);
        return VornTestbed::HttpResponse::Text(200, "late answer");
    });
    const nlohmann::json request = {{"baseUrls", {Url("/slow")}}, {"caFile", files_.caFile},
        {"requestBody", {"alpha"}}};

    CallResult result = client_.Request(request.dump(), recorder_);
    EXPECT_EQ(result.result, SUCCESS);
    EXPECT_EQ(result.reply, SUCCESS);
    EXPECT_EQ(recorder_->Count(), 0u);

    // The request goes on after the reply, and the client hears of it through the callback.
    EXPECT_TRUE(server_->WaitForRequests(1, 5s));
    release.set_value();
    ASSERT_TRUE(recorder_->WaitForCount(1, 10s));
    const nlohmann::json response = nlohmann::json::parse(recorder_->Responses()[0]);
    EXPECT_EQ(response["code"], 200);
    EXPECT_EQ(response["body"], "late answer");
    EXPECT_TRUE(logs_.WaitFor("VornSAStub::SendNetworkRequest out", 10s));
    EXPECT_TRUE(HostPlatform::FfrtWaitIdle(5s));
}
} // namespace
