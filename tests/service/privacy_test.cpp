#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "eventhandler_host.h"
#include "ffrt_host.h"
#include "https_fixture.h"
#include "ipc_host.h"
#include "raw_service_client.h"
#include "response_recorder.h"
#include "temp_dir.h"
#include "vorn_sa.h"
#include "vorn_sa_id.h"

// What a client sends and what its server answers stays out of the service's log: a request and
// an event go through the IPC front with the log written to a file, which must hold none of it,
// unless private values are revealed on purpose (VORN_HILOG_PRIVATE=1), which shows that the test
// would see them.
namespace {
using namespace std::chrono_literals;
using VornTestbed::HttpResponse;

const std::string PATH = "/path-secret-4f1a";
const std::string QUERY = "q=query-secret-9b3e";
const std::string HEADER_LINE = "X-Secret: header-secret-2d8c";
const std::string SERVICE_NAME = "service-secret-51c0";
const std::string RESPONSE_BODY = "body-secret-77c2";
const std::string EVENT_VALUE = "event-secret-6a0f";

class PrivacyTest : public VornTest::HttpsFixture {
protected:
    void SetUp() override
    {
        HttpsFixture::SetUp();
        HttpResponse answer = HttpResponse::Text(200, RESPONSE_BODY);
        answer.headerLines = {"X-Answer: answer-secret-0e9d"};
        server_->Respond(PATH, answer);
    }

    // The service's log of one request and one event, with private values revealed or not.
    std::string LogOfRequestAndEvent(const std::optional<std::string> &revealPrivate)
    {
        VornTestbed::TempDir dir;
        const std::string logFile = dir.Path("hilog.txt");
        VornTest::ScopedEnv file("VORN_HILOG_FILE", logFile);
        VornTest::ScopedEnv reveal("VORN_HILOG_PRIVATE", revealPrivate);
        server_->ClearRequests();

        const nlohmann::json request = {{"baseUrls", {Url(PATH)}}, {"caFile", files_.caFile}, {"queryHeaders", QUERY},
            {"requestHeaders", {HEADER_LINE}}, {"requestBody", {SERVICE_NAME}}, {"appVersion", "1.0"}};
        const nlohmann::json event = {{"eventId", "evt.privacy"},
            {"content", nlohmann::json({{"note", EVENT_VALUE}}).dump()}};
        OHOS::sptr<VornTest::ResponseRecorder> recorder = new VornTest::ResponseRecorder();
        EXPECT_EQ(client_.Request(request.dump(), HostPlatform::MakeRemoteProxy(recorder)).result, 0);
        EXPECT_TRUE(recorder->WaitForCount(1, 15s));
        EXPECT_EQ(client_.Event(event.dump()).result, 0);
        EXPECT_TRUE(HostPlatform::FfrtWaitIdle(15s));
        EXPECT_TRUE(HostPlatform::EventRunnersWaitIdle(15s));
        // The request really went out and came back, so every value had its chance to be logged.
        EXPECT_EQ(server_->RequestCount(PATH), 1u);
        EXPECT_NE(recorder->Responses().front().find(RESPONSE_BODY), std::string::npos);

        return VornTest::ReadFile(logFile);
    }

    OHOS::sptr<OHOS::Vorn::VornSA> sa_ = new OHOS::Vorn::VornSA(OHOS::Vorn::VORN_SA_ID, false);
    VornTools::RawServiceClient client_ {HostPlatform::MakeRemoteProxy(sa_)};
};

TEST_F(PrivacyTest, RequestAndEventContentsAreLoggedOnlyWhenRevealed)
{
    const std::vector<std::string> loggedPrivately = {PATH, QUERY, EVENT_VALUE};
    const std::vector<std::string> neverLogged = {HEADER_LINE, SERVICE_NAME, RESPONSE_BODY, "answer-secret-0e9d"};

    const std::string masked = LogOfRequestAndEvent(std::nullopt);
    EXPECT_NE(masked.find("HttpLogic request mHostName:<private>"), std::string::npos);
    EXPECT_NE(masked.find("eventId:evt.privacy, content:<private>"), std::string::npos);
    const std::string revealed = LogOfRequestAndEvent("1");
    for (const std::string &secret : loggedPrivately) {
        EXPECT_EQ(masked.find(secret), std::string::npos) << secret;
        EXPECT_NE(revealed.find(secret), std::string::npos) << secret;
    }
    for (const std::string &secret : neverLogged) {
        EXPECT_EQ(masked.find(secret), std::string::npos) << secret;
        EXPECT_EQ(revealed.find(secret), std::string::npos) << secret;
    }
}
} // namespace
