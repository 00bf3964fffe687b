#ifndef VORN_INNER_API_VORN_REQUEST_H
#define VORN_INNER_API_VORN_REQUEST_H

#include <cstdint>
#include <string>
#include <vector>

namespace OHOS {
namespace Vorn {
// One request as a client describes it. ToJson writes the request text the service reads;
// fields left empty (or 0) are left out, which the service reads as their defaults.
struct VornRequest {
    // Explicit proxy settings; the service carries them but takes the device's default proxy.
    struct Proxy {
        std::string url;
        std::string noProxyUrls;
        std::string userName;
        std::string password;
    };

    std::vector<std::string> baseUrls; // candidates, tried in this order; none: the routing service's
    std::vector<std::string> requestHeaders; // complete header lines, e.g. "Content-Type: application/json"
    std::string queryHeaders; // query text appended after "?"
    std::vector<std::string> requestBody; // service names, posted as {"services": [...]}
    std::string caFile; // CA certificate file; empty: the device's default store
    std::string interfaceName; // local network interface to bind to
    std::string appVersion;
    std::string saType; // "gns" turns off the routing service and the query text
    int32_t requestTimeOut = 0; // carried to the service, which keeps its own limits
    Proxy proxy;

    // The request JSON text, compact. Strings must be UTF-8; anything else yields "".
    std::string ToJson() const;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_VORN_REQUEST_H
