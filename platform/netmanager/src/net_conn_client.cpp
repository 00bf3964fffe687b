#include "net_conn_client.h"

#include <cstdlib>
#include <utility>

namespace OHOS {
namespace NetManagerStandard {
namespace {
constexpr char DEFAULT_PROXY_ENV[] = "VORN_DEFAULT_HTTP_PROXY";
} // namespace

NetConnClient &NetConnClient::GetInstance()
{
    static NetConnClient instance;
    return instance;
}

int32_t NetConnClient::GetDefaultHttpProxy(HttpProxy &httpProxy)
{
    // Read on every call: a test or the host runner may change the proxy while the process runs.
    const char *setting = std::getenv(DEFAULT_PROXY_ENV);
    if (setting == nullptr || *setting == '\0') {
        httpProxy = HttpProxy();
        return NETMANAGER_SUCCESS;
    }
    std::optional<HttpProxy> proxy = HttpProxy::FromString(setting);
    if (!proxy) {
        return NETMANAGER_ERR_INTERNAL;
    }
    httpProxy = std::move(*proxy);
    return NETMANAGER_SUCCESS;
}
} // namespace NetManagerStandard
} // namespace OHOS
