#ifndef NETMANAGER_HTTP_PROXY_H
#define NETMANAGER_HTTP_PROXY_H

#include <cstdint>
#include <list>
#include <optional>
#include <string>

namespace OHOS {
namespace NetManagerStandard {
// On the host the proxy is a plain value: it never crosses a parcel, so it is no Parcelable.
// The 5.0 release has no user id on a proxy (it came with per-user proxies in 6.0).
class HttpProxy final {
public:
    HttpProxy();
    HttpProxy(std::string host, uint16_t port, const std::list<std::string> &exclusionList);

    [[nodiscard]] std::string GetHost() const;
    [[nodiscard]] uint16_t GetPort() const;
    [[nodiscard]] std::list<std::string> GetExclusionList() const;
    // Reads "HOST:PORT", followed by ";" and comma-separated exclusions when there are any;
    // nullopt when the text is not such a proxy.
    [[nodiscard]] static std::optional<HttpProxy> FromString(const std::string &str);

    bool operator==(const HttpProxy &httpProxy) const;

private:
    std::string host_;
    uint16_t port_ = 0;
    std::list<std::string> exclusionList_;
};
} // namespace NetManagerStandard
} // namespace OHOS

#endif // NETMANAGER_HTTP_PROXY_H
