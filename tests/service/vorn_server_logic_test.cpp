#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "engine_fixture.h"
#include "hilog_host.h"
#include "log_lines.h"
#include "time_utils.h"
#include "vorn_server_logic.h"
#include "working_directory.h"

namespace {
using namespace std::chrono_literals;
using OHOS::Vorn::VornServerLogic;
using VornTestbed::HttpResponse;
using Json = nlohmann::json;
using Statistics = VornServerLogic::VornRequestStatistics;

constexpr const char *CONFIG_PATH = "system/etc/tarnix/vorn_depot/qel_sdk_server_config.json";
constexpr const char *CONFIG_FAILED_RESPONSE =
    R"({"body":"","code":-1,"header":"","message":"Parse default server config file failed."})";

std::shared_ptr<Statistics> MakeStatistics(uint64_t submit, uint64_t start, uint64_t end, const std::string &code)
{
    auto statistics = std::make_shared<Statistics>();
    statistics->domain = "example.com";
    statistics->submitTime = submit;
    statistics->startTime = start;
    statistics->endTime = end;
    statistics->errorCode = code;
    statistics->hasStatistics = true;
    return statistics;
}

TEST(ServerLogicResponseTest, WritesSortedCompactTextWithRawUtf8AndEscapedStrings)
{
    std::string text = VornServerLogic::GetResponse(404, "PostHttpsRequest failed", "Rule: a\r\n\r\n",
        "{\"k\":\"v\",\"city\":\"Zürich\"}\t\x01", MakeStatistics(1000, 1250, 1600, "404"));

    EXPECT_EQ(text,
        "{\"body\":\"{\\\"k\\\":\\\"v\\\",\\\"city\\\":\\\"Zürich\\\"}\\t\\u0001\",\"code\":404,"
        "\"header\":\"Rule: a\\r\\n\\r\\n\",\"message\":\"PostHttpsRequest failed\","
        "\"statistics\":{\"req_domain\":\"example.com\",\"req_end_time\":1600,\"req_error_code\":\"404\","
        "\"req_start_time\":1250,\"req_total_time\":350,\"req_wait_time\":250}}");
}

TEST(ServerLogicResponseTest, StatisticsOnlyForAnExchangeAndWrappingWhenTheClockSteppedBack)
{
    auto statistics = MakeStatistics(1, 2, 3, "200");
    statistics->hasStatistics = false;
    EXPECT_EQ(VornServerLogic::GetResponse(INT64_MIN, "InitHttpLogic failed", "", "", statistics),
        R"({"body":"","code":-9223372036854775808,"header":"","message":"InitHttpLogic failed"})");

    // Started at 5000, ended at 4000 and submitted after it started: both differences wrap.
    std::string text =
        VornServerLogic::GetResponse(200, "Request success", "", "", MakeStatistics(5001, 5000, 4000, "200"));
    EXPECT_NE(text.find("\"req_total_time\":18446744073709550616"), std::string::npos) << text;
    EXPECT_NE(text.find("\"req_wait_time\":18446744073709551615"), std::string::npos) << text;

    EXPECT_THROW(VornServerLogic::GetResponse(200, "Request success", "", "bad \xff\xfe", nullptr), Json::type_error);
}

class ServerLogicTest : public VornTest::EngineFixture {
protected:
    ServerLogicTest() : EngineFixture(15s) {}

    std::vector<std::string> Paths() const
    {
        std::vector<std::string> paths;
        for (const auto &request : server_->Requests()) {
            paths.push_back(request.path);
        }
        return paths;
    }

    size_t ErrorLines() const
    {
        return VornTest::CountLevel(logs_, LOG_ERROR, "VornService") +
            VornTest::CountLevel(logs_, LOG_ERROR, "VornCommon");
    }
};

TEST_F(ServerLogicTest, SuccessResponseCarriesBodyHeadsAndConsistentStatistics)
{
    HttpResponse ok = HttpResponse::Text(200, "{\"urls\":[\"u1\"]}");
    ok.headerLines = {"Cache-Control: max-age=60"};
    server_->Respond("/ok", ok);
    const uint64_t before = static_cast<uint64_t>(OHOS::Vorn::TimeUtils::GetTimeMills());

    ASSERT_EQ(RunToIdle(Request({Url("/ok")})), 0);

    const uint64_t after = static_cast<uint64_t>(OHOS::Vorn::TimeUtils::GetTimeMills());
    ASSERT_EQ(recorder_->Count(), 1u);
    Json response = Json::parse(recorder_->Responses().front());
    const Json &timing = response["statistics"];
    const uint64_t start = timing["req_start_time"];
    const uint64_t end = timing["req_end_time"];
    const uint64_t wait = timing["req_wait_time"];
    EXPECT_EQ(timing["req_total_time"].get<uint64_t>(), end - start);
    EXPECT_LE(before, start - wait);
    EXPECT_LE(start, end);
    EXPECT_LE(end, after);

    EXPECT_EQ(response["body"], "{\"urls\":[\"u1\"]}");
    EXPECT_EQ(response["message"], "Request success");
    EXPECT_EQ(timing["req_domain"], "127.0.0.1");
    EXPECT_EQ(timing["req_error_code"], "200");
    const std::string header = response["header"];
    EXPECT_NE(header.find("\r\nCache-status: success\r\nCache-Control: 60\r\n\r\n"), std::string::npos) << header;
    EXPECT_EQ(Lines(LOG_INFO, "SubmitRequestTask::success"), 1u);
    EXPECT_EQ(Lines(LOG_INFO, "VornServerLogic::GetAllServiceUrl success"), 1u);
}

TEST_F(ServerLogicTest, FailedFirstUrlFallsBackSilentlyToTheSecond)
{
    server_->Respond("/a", HttpResponse::Text(500, "down"));
    server_->Respond("/b", HttpResponse::Text(200, "up"));

    ASSERT_EQ(RunToIdle(Request({Url("/a"), Url("/b"), Url("/never")})), 0);

    EXPECT_EQ(Paths(), (std::vector<std::string> {"/a", "/b"}));
    ASSERT_EQ(recorder_->Count(), 1u);
    Json response = Json::parse(recorder_->Responses().front());
    EXPECT_EQ(response["code"], 200);
    EXPECT_EQ(response["body"], "up");
    EXPECT_EQ(Lines(LOG_INFO, "VornServerLogic::PostHttpsRequest failed:500"), 1u);
    EXPECT_EQ(Lines(LOG_WARN, "SubmitRequestTask::fail -1"), 1u);
    EXPECT_EQ(Lines(LOG_INFO, "SubmitRequestTask::success"), 1u);
}

TEST_F(ServerLogicTest, OnlyTheLastUrlReportsFailureWithItsStatus)
{
    server_->Respond("/a", HttpResponse::Text(500, "down"));
    server_->Respond("/b", HttpResponse::Text(404, "missing"));

    EXPECT_EQ(RunToIdle(Request({Url("/a"), Url("/b")})), -1);

    ASSERT_EQ(recorder_->Count(), 1u);
    const std::string text = recorder_->Responses().front();
    EXPECT_EQ(text.rfind("{\"body\":\"missing\",\"code\":404,\"header\":\"Rule: ", 0), 0u) << text;
    Json response = Json::parse(text);
    EXPECT_EQ(response["message"], "PostHttpsRequest failed");
    EXPECT_EQ(response["statistics"]["req_error_code"], "404");
    EXPECT_EQ(response["statistics"]["req_domain"], "127.0.0.1");
    EXPECT_EQ(Lines(LOG_WARN, "SubmitRequestTask::fail -1"), 2u);
    EXPECT_EQ(Lines(LOG_WARN, "VornServerLogic::GetAllServiceUrl futrue not OK"), 1u);
}

// Runs with the working directory at a fresh root, as the service does on a device.
class ServerConfigTest : public ServerLogicTest {
protected:
    void WriteConfig(const std::string &content) { root_.WriteFile(CONFIG_PATH, content); }

    static std::string Config(const std::string &baseUrls, const std::string &endpoint)
    {
        return R"({"qel_server":{"qel_base_url":)" + baseUrls + R"(,"qel_query_endpoint":")" + endpoint +
            R"(","qel_query_timeout":5}})";
    }

    VornTestbed::TempDir root_;
    VornTest::WorkingDirectory cwd_ {root_.Path()};
};

TEST_F(ServerConfigTest, RoutingUrlsGetTheEndpointAppendedVerbatim)
{
    server_->Respond("/a//v1", HttpResponse::Text(503, "busy"));
    server_->Respond("/b/v1", HttpResponse::Text(200, "routes"));
    WriteConfig(Config("[\"" + Url("/a/") + "\",\"" + Url("/b") + "\"]", "/v1"));

    ASSERT_EQ(RunToIdle(Request({})), 0);

    EXPECT_EQ(Paths(), (std::vector<std::string> {"/a//v1", "/b/v1"}));
    EXPECT_EQ(server_->Requests().back().query, "appId=42&scope=test");
    ASSERT_EQ(recorder_->Count(), 1u);
    EXPECT_EQ(Json::parse(recorder_->Responses().front())["body"], "routes");
}

TEST_F(ServerConfigTest, UnusableConfigurationAnswersWithOneErrorResponse)
{
    struct Case {
        std::optional<std::string> content;
        const char *log;
    };
    const std::vector<Case> cases = {
        {std::nullopt, "VornServerLogic read the service configure failed"},
        {"{\"qel_server\": // no comments\n {}}", "VornServerLogic parse the service configure file failed."},
        {Config("\"" + Url("/a") + "\"", "/v1"), "VornServerLogic, Parse json catch exception"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.log);
        if (c.content) {
            WriteConfig(*c.content);
        }
        NewCallback();
        logs_.Clear();

        EXPECT_EQ(RunToIdle(Request({})), -1);

        EXPECT_EQ(recorder_->Responses(), std::vector<std::string> {CONFIG_FAILED_RESPONSE});
        EXPECT_EQ(Lines(LOG_ERROR, c.log), 1u);
        EXPECT_EQ(ErrorLines(), 1u);
    }
    EXPECT_EQ(server_->RequestCount(), 0u);
}

TEST_F(ServerConfigTest, EmptyRoutingListEndsTheJobWithoutResponse)
{
    WriteConfig(Config("[]", "/v1"));

    EXPECT_EQ(RunToIdle(Request({})), -1);

    EXPECT_EQ(recorder_->Count(), 0u);
    EXPECT_EQ(Lines(LOG_WARN, "VornServerLogic::GetAllServiceUrl futrue not OK"), 1u);
    EXPECT_EQ(ErrorLines(), 0u);
}

TEST_F(ServerConfigTest, GnsRequestsAndRequestsWithOwnUrlsNeverReadTheConfiguration)
{
    WriteConfig("not json");
    server_->Respond("/own", HttpResponse::Text(200, "own"));
    auto gns = Request({});
    gns.saType = "gns";

    EXPECT_EQ(RunToIdle(gns), -1);
    EXPECT_EQ(recorder_->Count(), 0u);
    EXPECT_EQ(RunToIdle(Request({Url("/own")})), 0);
    EXPECT_EQ(recorder_->Count(), 1u);

    EXPECT_EQ(ErrorLines(), 0u);
    EXPECT_EQ(Paths(), std::vector<std::string> {"/own"});
}
} // namespace
