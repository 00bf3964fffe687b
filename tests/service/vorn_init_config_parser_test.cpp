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
using ProxyInfo = VornInitConfigParser::HttpProxyInfo;
using ServerConfig = VornInitConfigParser::ServerConfig;
using Strings = std::vector<std::string>;

namespace {
RequestInfo FilledRequest()
{
    RequestInfo info;
    info.interfaceName = "old-if";
    info.appVersion = "old-version";
    info.caFile = "old-ca";
    info.saType = "old-type";
    info.baseUrls = {"old-a", "old-b", "old-c"};
    info.requestTimeOut = 77;
    info.requestHeaders = {"Old: 1"};
    info.queryHeaders = "old=1";
    info.requestBody = {"old-service"};
    info.proxyInfo = {"old-proxy", "old-no-proxy", "old-user", "old-password"};
    return info;
}

void ExpectDefault(const RequestInfo &info)
{
    EXPECT_EQ(info.interfaceName, "");
    EXPECT_EQ(info.appVersion, "");
    EXPECT_EQ(info.caFile, "");
    EXPECT_EQ(info.saType, "");
    EXPECT_TRUE(info.baseUrls.empty());
    EXPECT_EQ(info.requestTimeOut, 0);
    EXPECT_TRUE(info.requestHeaders.empty());
    EXPECT_EQ(info.queryHeaders, "");
    EXPECT_TRUE(info.requestBody.empty());
    EXPECT_EQ(info.proxyInfo.proxyUrl, "");
    EXPECT_EQ(info.proxyInfo.noProxyUrls, "");
    EXPECT_EQ(info.proxyInfo.proxyUserName, "");
    EXPECT_EQ(info.proxyInfo.proxyPassword, "");
}

int32_t ParsedTimeout(const Json &value)
{
    RequestInfo info;
    info.requestTimeOut = 77;
    VornInitConfigParser::FromJson(Json {{"requestTimeOut", value}}, info);
    return info.requestTimeOut;
}
} // namespace

TEST(VornInitConfigParserTest, EmptyObjectKeepsDefaults)
{
    RequestInfo info;
    VornInitConfigParser::FromJson(Json::object(), info);
    ExpectDefault(info);
}

TEST(VornInitConfigParserTest, NonObjectTopLevelLeavesRecordUntouched)
{
    for (const Json &value : {Json(nullptr), Json::array({"interfaceName", "eth0"}), Json("x"), Json(5)}) {
        RequestInfo info = FilledRequest();
        EXPECT_NO_THROW(VornInitConfigParser::FromJson(value, info)) << value.dump();
        EXPECT_EQ(info.interfaceName, "old-if");
        EXPECT_EQ(info.baseUrls, (Strings {"old-a", "old-b", "old-c"}));
        EXPECT_EQ(info.proxyInfo.proxyUrl, "old-proxy");
    }
}

TEST(VornInitConfigParserTest, FullRequestFillsEveryField)
{
    const Json json = Json::parse(R"({
        "interfaceName": "wlan0", "appVersion": "1.2.3", "caFile": "/etc/ca.pem", "saType": "gns",
        "requestTimeOut": 3000, "queryHeaders": "a=1&b=2",
        "baseUrls": ["https://z.example", "https://a.example", "https://m.example"],
        "requestHeaders": ["Content-Type: application/json", "X-Id: 7"],
        "requestBody": ["svcA", "svcB"],
        "proxyParam": {"proxyUrl": "http://proxy:3128", "noProxyUrls": "localhost",
                       "proxyUserName": "user", "proxyPassword": "secret"}
    })");
    RequestInfo info;
    VornInitConfigParser::FromJson(json, info);
    EXPECT_EQ(info.interfaceName, "wlan0");
    EXPECT_EQ(info.appVersion, "1.2.3");
    EXPECT_EQ(info.caFile, "/etc/ca.pem");
    EXPECT_EQ(info.saType, "gns");
    EXPECT_EQ(info.requestTimeOut, 3000);
    EXPECT_EQ(info.queryHeaders, "a=1&b=2");
    EXPECT_EQ(info.baseUrls, (Strings {"https://z.example", "https://a.example", "https://m.example"}));
    EXPECT_EQ(info.requestHeaders, (Strings {"Content-Type: application/json", "X-Id: 7"}));
    EXPECT_EQ(info.requestBody, (Strings {"svcA", "svcB"}));
    EXPECT_EQ(info.proxyInfo.proxyUrl, "http://proxy:3128");
    EXPECT_EQ(info.proxyInfo.noProxyUrls, "localhost");
    EXPECT_EQ(info.proxyInfo.proxyUserName, "user");
    EXPECT_EQ(info.proxyInfo.proxyPassword, "secret");
}

TEST(VornInitConfigParserTest, AbsentKeysKeepFieldsAndListsAreReplacedWhole)
{
    RequestInfo info = FilledRequest();
    VornInitConfigParser::FromJson(Json {{"baseUrls", {"new"}}, {"requestBody", Json::array()}}, info);
    EXPECT_EQ(info.baseUrls, Strings {"new"});
    EXPECT_TRUE(info.requestBody.empty());
    EXPECT_EQ(info.interfaceName, "old-if");
    EXPECT_EQ(info.requestTimeOut, 77);
    EXPECT_EQ(info.requestHeaders, Strings {"Old: 1"});
    EXPECT_EQ(info.proxyInfo.proxyPassword, "old-password");
}

TEST(VornInitConfigParserTest, TimeoutTakesNumbersOnly)
{
    EXPECT_EQ(ParsedTimeout(2500.9), 2500);
    EXPECT_EQ(ParsedTimeout(-2500.9), -2500);
    EXPECT_EQ(ParsedTimeout(0.99), 0);
    EXPECT_EQ(ParsedTimeout(-12), -12);
    EXPECT_EQ(ParsedTimeout(4000U), 4000);
    // Anything else is ignored without an error and keeps the previous value.
    EXPECT_EQ(ParsedTimeout("2500"), 77);
    EXPECT_EQ(ParsedTimeout(true), 77);
    EXPECT_EQ(ParsedTimeout(nullptr), 77);
    EXPECT_EQ(ParsedTimeout(Json::array({1})), 77);
    // Out-of-range floating-point values saturate instead of invoking an undefined cast.
    EXPECT_EQ(ParsedTimeout(1e20), std::numeric_limits<int32_t>::max());
    EXPECT_EQ(ParsedTimeout(-1e20), std::numeric_limits<int32_t>::min());
}

TEST(VornInitConfigParserTest, MistypedStringThrowsAfterEarlierKeysWereStored)
{
    // "caFile" is read after "interfaceName" and "appVersion" but before "saType".
    const Json json = {{"interfaceName", "eth1"}, {"appVersion", "9"}, {"caFile", nullptr}, {"saType", "gns"},
        {"baseUrls", {"https://a"}}};
    RequestInfo info = FilledRequest();
    EXPECT_THROW(VornInitConfigParser::FromJson(json, info), nlohmann::json::type_error);
    EXPECT_EQ(info.interfaceName, "eth1");
    EXPECT_EQ(info.appVersion, "9");
    EXPECT_EQ(info.caFile, "old-ca");
    EXPECT_EQ(info.saType, "old-type");
    EXPECT_EQ(info.baseUrls, (Strings {"old-a", "old-b", "old-c"}));
}

TEST(VornInitConfigParserTest, MistypedListThrowsAfterTimeoutAndQueryWereStored)
{
    // Timeout and query text come before the lists; "requestHeaders" comes after "baseUrls".
    const Json json = {{"requestTimeOut", 10}, {"queryHeaders", "q=1"}, {"baseUrls", "https://a"},
        {"requestHeaders", {"H: 1"}}};
    RequestInfo info = FilledRequest();
    EXPECT_THROW(VornInitConfigParser::FromJson(json, info), nlohmann::json::type_error);
    EXPECT_EQ(info.requestTimeOut, 10);
    EXPECT_EQ(info.queryHeaders, "q=1");
    EXPECT_EQ(info.baseUrls, (Strings {"old-a", "old-b", "old-c"}));
    EXPECT_EQ(info.requestHeaders, Strings {"Old: 1"});
}

TEST(VornInitConfigParserTest, ListWithNonStringElementThrows)
{
    RequestInfo info;
    EXPECT_THROW(VornInitConfigParser::FromJson(Json {{"requestBody", {"a", 1}}}, info), nlohmann::json::type_error);
    EXPECT_THROW(VornInitConfigParser::FromJson(Json {{"requestHeaders", nullptr}}, info),
        nlohmann::json::type_error);
    EXPECT_THROW(VornInitConfigParser::FromJson(Json {{"saType", 1}}, info), nlohmann::json::type_error);
}

TEST(VornInitConfigParserTest, ProxyParamAbsentOrNotObjectKeepsProxy)
{
    for (const Json &json : {Json {{"saType", "x"}}, Json {{"proxyParam", "http://proxy:1"}},
             Json {{"proxyParam", nullptr}}, Json {{"proxyParam", Json::array()}}}) {
        RequestInfo info = FilledRequest();
        EXPECT_NO_THROW(VornInitConfigParser::FromJson(json, info)) << json.dump();
        EXPECT_EQ(info.proxyInfo.proxyUrl, "old-proxy");
        EXPECT_EQ(info.proxyInfo.proxyPassword, "old-password");
    }
}

TEST(VornInitConfigParserTest, ProxyParamReplacesAllFourFields)
{
    // A partial proxy object resets the keys it lacks: it is parsed into a fresh record.
    RequestInfo info = FilledRequest();
    VornInitConfigParser::FromJson(Json {{"proxyParam", {{"proxyUrl", "http://p:8080"}}}}, info);
    EXPECT_EQ(info.proxyInfo.proxyUrl, "http://p:8080");
    EXPECT_EQ(info.proxyInfo.noProxyUrls, "");
    EXPECT_EQ(info.proxyInfo.proxyUserName, "");
    EXPECT_EQ(info.proxyInfo.proxyPassword, "");
}

TEST(VornInitConfigParserTest, MistypedProxyKeyThrowsAndKeepsPreviousProxy)
{
    const Json json = {{"saType", "new-type"},
        {"proxyParam", {{"proxyUrl", "http://p:1"}, {"noProxyUrls", "a"}, {"proxyUserName", 42}}}};
    RequestInfo info = FilledRequest();
    EXPECT_THROW(VornInitConfigParser::FromJson(json, info), nlohmann::json::type_error);
    EXPECT_EQ(info.saType, "new-type");
    EXPECT_EQ(info.proxyInfo.proxyUrl, "old-proxy");
    EXPECT_EQ(info.proxyInfo.noProxyUrls, "old-no-proxy");

    // Called directly, the fields before the mistyped one are stored.
    ProxyInfo proxy;
    EXPECT_THROW(VornInitConfigParser::ProxyInfoFromJson(json.at("proxyParam"), proxy), nlohmann::json::type_error);
    EXPECT_EQ(proxy.proxyUrl, "http://p:1");
    EXPECT_EQ(proxy.noProxyUrls, "a");
    EXPECT_EQ(proxy.proxyUserName, "");
}

TEST(VornInitConfigParserTest, ServerConfigReadsQelServerSection)
{
    const Json json = Json::parse(R"({"other": 1, "qel_server": {
        "qel_base_url": ["https://b.example", "https://a.example"],
        "qel_query_endpoint": "/v1/query", "qel_query_timeout": 1500.7}})");
    ServerConfig config;
    VornInitConfigParser::ServerConfigFromJson(json, config);
    EXPECT_EQ(config.qelBaseUrls, (Strings {"https://b.example", "https://a.example"}));
    EXPECT_EQ(config.qelQueryEndpoint, "/v1/query");
    EXPECT_EQ(config.qelQueryTimeout, 1500);
}

TEST(VornInitConfigParserTest, ServerConfigIgnoresMissingOrMistypedSection)
{
    const std::vector<Json> inputs = {Json::object(), Json {{"qel_base_url", {"https://top.level"}}},
        Json {{"qel_server", "https://x"}}, Json {{"qel_server", Json::array({"https://x"})}}, Json::array(),
        Json {{"qel_server", {{"qel_query_timeout", "900"}}}}};
    for (const Json &json : inputs) {
        ServerConfig config;
        config.qelBaseUrls = {"keep"};
        config.qelQueryEndpoint = "/keep";
        config.qelQueryTimeout = 5;
        EXPECT_NO_THROW(VornInitConfigParser::ServerConfigFromJson(json, config)) << json.dump();
        EXPECT_EQ(config.qelBaseUrls, Strings {"keep"});
        EXPECT_EQ(config.qelQueryEndpoint, "/keep");
        EXPECT_EQ(config.qelQueryTimeout, 5);
    }
}

TEST(VornInitConfigParserTest, ServerConfigMistypedKeyThrows)
{
    ServerConfig config;
    const Json badUrls = {{"qel_server", {{"qel_base_url", "https://a"}, {"qel_query_endpoint", "/q"}}}};
    EXPECT_THROW(VornInitConfigParser::ServerConfigFromJson(badUrls, config), nlohmann::json::type_error);
    EXPECT_EQ(config.qelQueryEndpoint, "");

    const Json badEndpoint = {{"qel_server", {{"qel_base_url", {"https://a"}}, {"qel_query_endpoint", 1}}}};
    EXPECT_THROW(VornInitConfigParser::ServerConfigFromJson(badEndpoint, config), nlohmann::json::type_error);
    EXPECT_EQ(config.qelBaseUrls, Strings {"https://a"});
}

TEST(VornOmsaInfoTest, ReadsEventIdAndContent)
{
    VornOmsaInfo::OmsaInfo info;
    VornOmsaInfo::FromJson(Json {{"eventId", "E100"}, {"content", R"({"k":"v"})"}}, info);
    EXPECT_EQ(info.eventId, "E100");
    EXPECT_EQ(info.content, R"({"k":"v"})");
}

TEST(VornOmsaInfoTest, MistypedOrNonObjectInput)
{
    VornOmsaInfo::OmsaInfo info {"old-id", "old-content"};
    VornOmsaInfo::FromJson(Json::array({"E1", "c"}), info);
    EXPECT_EQ(info.eventId, "old-id");
    EXPECT_EQ(info.content, "old-content");

    // A content object rather than its text is rejected; the id read before it stays.
    EXPECT_THROW(VornOmsaInfo::FromJson(Json {{"eventId", "E2"}, {"content", {{"k", "v"}}}}, info),
        nlohmann::json::type_error);
    EXPECT_EQ(info.eventId, "E2");
    EXPECT_EQ(info.content, "old-content");
}
