#ifndef NET_CONN_CLIENT_H
#define NET_CONN_CLIENT_H

#include <cstdint>
#include <memory>

#include "http_proxy.h"
#include "net_manager_constants.h"

namespace OHOS {
namespace NetManagerStandard {
// On the host the default proxy is the value of VORN_DEFAULT_HTTP_PROXY ("HOST:PORT", optionally
// followed by ";" and a comma-separated exclusion list), read on every call.
class NetConnClient : public std::enable_shared_from_this<NetConnClient> {
public:
    static NetConnClient &GetInstance();

    // Returns NETMANAGER_SUCCESS (0) and the proxy, an empty one when none is set; a malformed
    // setting returns NETMANAGER_ERR_INTERNAL and leaves `httpProxy` as it was.
    int32_t GetDefaultHttpProxy(HttpProxy &httpProxy);

    NetConnClient(const NetConnClient &) = delete;
    NetConnClient &operator=(const NetConnClient &) = delete;

private:
    NetConnClient() = default;
    ~NetConnClient() = default;
};
} // namespace NetManagerStandard
} // namespace OHOS

#endif // NET_CONN_CLIENT_H
