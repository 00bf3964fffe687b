#include "vorn_request.h"

#include <nlohmann/json.hpp>

#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
namespace {
template <typename Value> void PutUnlessEmpty(nlohmann::json &object, const char *key, const Value &value)
{
    if (!value.empty()) {
        object[key] = value;
    }
}

nlohmann::json ProxyJson(const VornRequest::Proxy &proxy)
{
    nlohmann::json object = nlohmann::json::object();
    PutUnlessEmpty(object, "proxyUrl", proxy.url);
    PutUnlessEmpty(object, "noProxyUrls", proxy.noProxyUrls);
    PutUnlessEmpty(object, "proxyUserName", proxy.userName);
    PutUnlessEmpty(object, "proxyPassword", proxy.password);
    return object;
}
} // namespace

std::string VornRequest::ToJson() const
{
    nlohmann::json object = nlohmann::json::object();
    PutUnlessEmpty(object, "interfaceName", interfaceName);
    PutUnlessEmpty(object, "appVersion", appVersion);
    PutUnlessEmpty(object, "caFile", caFile);
    PutUnlessEmpty(object, "saType", saType);
    if (requestTimeOut != 0) {
        object["requestTimeOut"] = requestTimeOut;
    }
    PutUnlessEmpty(object, "queryHeaders", queryHeaders);
    PutUnlessEmpty(object, "baseUrls", baseUrls);
    PutUnlessEmpty(object, "requestHeaders", requestHeaders);
    PutUnlessEmpty(object, "requestBody", requestBody);
    nlohmann::json proxyParam = ProxyJson(proxy);
    if (!proxyParam.empty()) {
        object["proxyParam"] = std::move(proxyParam);
    }
    try {
        return object.dump();
    } catch (const nlohmann::json::exception &) {
        VORN_LOGE("VornRequest::ToJson a field is not UTF-8");
        return std::string();
    }
}
} // namespace Vorn
} // namespace OHOS
