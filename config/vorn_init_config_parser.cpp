#include "vorn_init_config_parser.h"

#include <limits>
#include <utility>

namespace OHOS {
namespace Vorn {
namespace {
using Json = nlohmann::json;

// get<std::string>() throws the library's type_error for any non-string, null included.
void ReadString(const Json &jsonObject, const char *key, std::string &field)
{
    if (jsonObject.contains(key)) {
        field = jsonObject.at(key).get<std::string>();
    }
}

// The whole list replaces the field; a non-array or a non-string element throws.
void ReadStringList(const Json &jsonObject, const char *key, std::vector<std::string> &field)
{
    if (jsonObject.contains(key)) {
        field = jsonObject.at(key).get<std::vector<std::string>>();
    }
}

// Integer keys are optional in kind as well: anything but a number (digits in a string, say) is
// ignored instead of failing the whole request.
void ReadInt32(const Json &jsonObject, const char *key, int32_t &field)
{
    if (!jsonObject.contains(key)) {
        return;
    }
    const Json &value = jsonObject.at(key);
    if (!value.is_number()) {
        return;
    }
    if (!value.is_number_float()) {
        field = value.get<int32_t>();
        return;
    }
    // Casting a floating-point value outside the int32 range is undefined behaviour, so those
    // saturate; everything else truncates toward zero like the cast.
    constexpr double lowest = static_cast<double>(std::numeric_limits<int32_t>::min());
    constexpr double highest = static_cast<double>(std::numeric_limits<int32_t>::max());
    const double number = value.get<double>();
    if (!(number > lowest - 1.0)) {
        field = std::numeric_limits<int32_t>::min();
    } else if (!(number < highest + 1.0)) {
        field = std::numeric_limits<int32_t>::max();
    } else {
        field = static_cast<int32_t>(number);
    }
}
} // namespace

void VornInitConfigParser::FromJson(const nlohmann::json &jsonObject, VornRequestInfo &requestInfo)
{
    if (!jsonObject.is_object()) {
        return;
    }
    ReadString(jsonObject, "interfaceName", requestInfo.interfaceName);
    ReadString(jsonObject, "appVersion", requestInfo.appVersion);
    ReadString(jsonObject, "caFile", requestInfo.caFile);
    ReadString(jsonObject, "saType", requestInfo.saType);
    ReadInt32(jsonObject, "requestTimeOut", requestInfo.requestTimeOut);
    ReadString(jsonObject, "queryHeaders", requestInfo.queryHeaders);
    ReadStringList(jsonObject, "baseUrls", requestInfo.baseUrls);
    ReadStringList(jsonObject, "requestHeaders", requestInfo.requestHeaders);
    ReadStringList(jsonObject, "requestBody", requestInfo.requestBody);

    if (!jsonObject.contains("proxyParam")) {
        return;
    }
    // A reference, not a copy: copying a JSON value recurses once per level of nesting, and a
    // client's "proxyParam" may nest deep enough to overflow the stack.
    const Json &proxyParam = jsonObject.at("proxyParam");
    if (!proxyParam.is_object()) {
        return;
    }
    // Parsed into a fresh record so that a mistyped proxy key leaves the previous settings whole.
    HttpProxyInfo proxyInfo;
    ProxyInfoFromJson(proxyParam, proxyInfo);
    requestInfo.proxyInfo = std::move(proxyInfo);
}

void VornInitConfigParser::ProxyInfoFromJson(const nlohmann::json &jsonObject, HttpProxyInfo &proxyInfo)
{
    if (!jsonObject.is_object()) {
        return;
    }
    ReadString(jsonObject, "proxyUrl", proxyInfo.proxyUrl);
    ReadString(jsonObject, "noProxyUrls", proxyInfo.noProxyUrls);
    ReadString(jsonObject, "proxyUserName", proxyInfo.proxyUserName);
    ReadString(jsonObject, "proxyPassword", proxyInfo.proxyPassword);
}

void VornInitConfigParser::ServerConfigFromJson(const nlohmann::json &jsonObject, ServerConfig &serverConfig)
{
    if (!jsonObject.contains("qel_server")) {
        return;
    }
    const Json &server = jsonObject.at("qel_server");
    if (!server.is_object()) {
        return;
    }
    ReadStringList(server, "qel_base_url", serverConfig.qelBaseUrls);
    ReadString(server, "qel_query_endpoint", serverConfig.qelQueryEndpoint);
    ReadInt32(server, "qel_query_timeout", serverConfig.qelQueryTimeout);
}
} // namespace Vorn
} // namespace OHOS
