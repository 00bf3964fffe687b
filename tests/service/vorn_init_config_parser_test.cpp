#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nlohmann/json.hpp"
#include "vorn_init_config_parser.h"
#include "vorn_omsa_info.h"

using namespace OHOS::Vorn;
using Json = nlohmann::json;
using RequestInfo = VornInitConfigParser::VornRequestInfo;
using ServerConfig = VornInitConfigParser::ServerConfig;
using Strings = std::vector<std::string>;

namespace {
// Every caller parses into a fresh record and discards it when the parser throws, so only the
// outcome of a whole parse is asserted.
RequestInfo Parsed(const Json &json)
{
    RequestInfo info;
    VornInitConfigParser::FromJson(json, info);
    return info;
}

int32_t ParsedTimeout(const Json &value)
{
    return Parsed(Json {{"requestTimeOut", value}}).requestTimeOut;
}
} // namespace

// The proxy object is read, so that a mistyped member refuses the request, but nothing uses it.
TEST(VornInitConfigParserTest, FullRequestFillsEveryField)
{
    const RequestInfo info = Parsed(Json::parse(R"({
        "interfaceName": "wlan0", "appVersion": "1.2.3", "caFile": "/etc/ca.pem", "saType": "gns",
        "requestTimeOut": 3000, "queryHeaders": "a=1&b=2",
        "baseUrls": ["https://z.example", "https://a.example", "https://m.example"],
        "requestHeaders": ["Content-Type: application/json", "X-Id: 7"],
        "requestBody": ["svcA", "svcB"],
        "proxyParam": {"proxyUrl": "http://proxy:3128", "noProxyUrls": "localhost",
                       "proxyUserName": "user", "proxyPassword": "secret"}
    })"));
    EXPECT_EQ(info.interfaceName, "wlan0");
    EXPECT_EQ(info.appVersion, "1.2.3");
    EXPECT_EQ(info.caFile, "/etc/ca.pem");
    EXPECT_EQ(info.saType, "gns");
    EXPECT_EQ(info.requestTimeOut, 3000);
    EXPECT_EQ(info.queryHeaders, "a=1&b=2");
    EXPECT_EQ(info.baseUrls, (Strings {"https://z.example", "https://a.example", "https://m.example"}));
    EXPECT_EQ(info.requestHeaders, (Strings {"Content-Type: application/json", "X-Id: 7"}));
    EXPECT_EQ(info.requestBody, (Strings {"svcA", "svcB"}));
}

TEST(VornInitConfigParserTest, NonObjectsAndAbsentOrNonObjectProxyKeepTheDefaults)
{
    for (const Json &json : {Json(nullptr), Json::array({"interfaceName", "eth0"}), Json("x"), Json(5), Json::object(),
             Json {{"proxyParam", "http://proxy:1"}}, Json {{"proxyParam", Json::array()}}}) {
        RequestInfo info;
        EXPECT_NO_THROW(VornInitConfigParser::FromJson(json, info)) << json.dump();
        EXPECT_EQ(info.interfaceName, "") << json.dump();
        EXPECT_TRUE(info.baseUrls.empty()) << json.dump();
    }
}

TEST(VornInitConfigParserTest, TimeoutTakesNumbersOnly)
{
    EXPECT_EQ(ParsedTimeout(2500.9), 2500);
    EXPECT_EQ(ParsedTimeout(-2500.9), -2500);
    EXPECT_EQ(ParsedTimeout(-12), -12);
    EXPECT_EQ(ParsedTimeout(4000U), 4000);
    // Anything else is ignored without an error.
    EXPECT_EQ(ParsedTimeout("2500"), 0);
    EXPECT_EQ(ParsedTimeout(true), 0);
    EXPECT_EQ(ParsedTimeout(Json::array({1})), 0);
    // Out-of-range floating-point values saturate instead of invoking an undefined cast.
    EXPECT_EQ(ParsedTimeout(1e20), std::numeric_limits<int32_t>::max());
    EXPECT_EQ(ParsedTimeout(-1e20), std::numeric_limits<int32_t>::min());
}

TEST(VornInitConfigParserTest, MistypedValuesThrow)
{
    const std::vector<Json> inputs = {{{"caFile", nullptr}}, {{"saType", 1}}, {{"baseUrls", "https://a"}},
        {{"requestHeaders", nullptr}}, {{"requestBody", {"a", 1}}}, {{"proxyParam", {{"proxyUserName", 42}}}}};
    for (const Json &json : inputs) {
        RequestInfo info;
        EXPECT_THROW(VornInitConfigParser::FromJson(json, info), nlohmann::json::type_error) << json.dump();
    }
}

TEST(VornInitConfigParserTest, ServerConfigReadsQelServerSectionOnly)
{
    const Json json = Json::parse(R"({"other": 1, "qel_server": {
        "qel_base_url": ["https://b.example", "https://a.example"],
        "qel_query_endpoint": "/v1/query", "qel_query_timeout": 1500.7}})");
    ServerConfig config;
    VornInitConfigParser::ServerConfigFromJson(json, config);
    EXPECT_EQ(config.qelBaseUrls, (Strings {"https://b.example", "https://a.example"}));
    EXPECT_EQ(config.qelQueryEndpoint, "/v1/query");
    EXPECT_EQ(config.qelQueryTimeout, 1500);

    const std::vector<Json> ignored = {Json::object(), Json {{"qel_base_url", {"https://top.level"}}},
        Json {{"qel_server", "https://x"}}, Json {{"qel_server", Json::array({"https://x"})}}, Json::array(),
        Json {{"qel_server", {{"qel_query_timeout", "900"}}}}};
    for (const Json &input : ignored) {
        ServerConfig untouched;
        EXPECT_NO_THROW(VornInitConfigParser::ServerConfigFromJson(input, untouched)) << input.dump();
        EXPECT_TRUE(untouched.qelBaseUrls.empty()) << input.dump();
        EXPECT_EQ(untouched.qelQueryTimeout, 0) << input.dump();
    }
    for (const Json &mistyped :
        {Json {{"qel_server", {{"qel_base_url", "https://a"}}}}, Json {{"qel_server", {{"qel_query_endpoint", 1}}}}}) {
        ServerConfig unused;
        EXPECT_THROW(VornInitConfigParser::ServerConfigFromJson(mistyped, unused), nlohmann::json::type_error);
    }
}

TEST(VornOmsaInfoTest, ReadsEventIdAndContentTextOnly)
{
    VornOmsaInfo::OmsaInfo info;
    VornOmsaInfo::FromJson(Json {{"eventId", "E100"}, {"content", R"({"k":"v"})"}}, info);
    EXPECT_EQ(info.eventId, "E100");
    EXPECT_EQ(info.content, R"({"k":"v"})");

    VornOmsaInfo::OmsaInfo fromArray;
    VornOmsaInfo::FromJson(Json::array({"E1", "c"}), fromArray);
    EXPECT_EQ(fromArray.eventId, "");
    // A content object rather than its text is rejected.
    VornOmsaInfo::OmsaInfo unused;
    EXPECT_THROW(VornOmsaInfo::FromJson(Json {{"eventId", "E2"}, {"content", {{"k", "v"}}}}, unused),
        nlohmann::json::type_error);
}
