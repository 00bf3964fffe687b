#include "http_proxy.h"

#include <cctype>
#include <utility>

namespace OHOS {
namespace NetManagerStandard {
namespace {
constexpr char LIST_SEPARATOR = ';';
constexpr char EXCLUSION_SEPARATOR = ',';
constexpr unsigned long MAX_PORT = 65535;

std::string Trim(const std::string &text)
{
    auto isSpace = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    size_t begin = 0;
    size_t end = text.size();
    while (begin < end && isSpace(text[begin])) {
        ++begin;
    }
    while (end > begin && isSpace(text[end - 1])) {
        --end;
    }
    return text.substr(begin, end - begin);
}

// A port is 1 to 65535 in decimal digits only; port 0 names no listening proxy.
std::optional<uint16_t> ParsePort(const std::string &text)
{
    const size_t maxDigits = 5;
    if (text.empty() || text.size() > maxDigits) {
        return std::nullopt;
    }
    for (char c : text) {
        if (std::isdigit(static_cast<unsigned char>(c)) == 0) {
            return std::nullopt;
        }
    }
    unsigned long port = std::stoul(text);
    if (port == 0 || port > MAX_PORT) {
        return std::nullopt;
    }
    return static_cast<uint16_t>(port);
}

std::list<std::string> ParseExclusions(const std::string &text)
{
    std::list<std::string> exclusions;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find(EXCLUSION_SEPARATOR, start);
        if (end == std::string::npos) {
            end = text.size();
        }
        std::string name = Trim(text.substr(start, end - start));
        if (!name.empty()) {
            exclusions.push_back(std::move(name));
        }
        start = end + 1;
    }
    return exclusions;
}
} // namespace

HttpProxy::HttpProxy() = default;

HttpProxy::HttpProxy(std::string host, uint16_t port, const std::list<std::string> &exclusionList)
    : host_(std::move(host)), port_(port), exclusionList_(exclusionList)
{
}

std::string HttpProxy::GetHost() const
{
    return host_;
}

uint16_t HttpProxy::GetPort() const
{
    return port_;
}

std::list<std::string> HttpProxy::GetExclusionList() const
{
    return exclusionList_;
}

// The port follows the last colon, so a host may carry a scheme ("https://proxy.local:3129").
std::optional<HttpProxy> HttpProxy::FromString(const std::string &str)
{
    size_t listStart = str.find(LIST_SEPARATOR);
    std::string address = Trim(str.substr(0, listStart));
    size_t colon = address.rfind(':');
    if (colon == std::string::npos || colon == 0) {
        return std::nullopt;
    }
    std::optional<uint16_t> port = ParsePort(address.substr(colon + 1));
    if (!port) {
        return std::nullopt;
    }
    std::list<std::string> exclusions;
    if (listStart != std::string::npos) {
        exclusions = ParseExclusions(str.substr(listStart + 1));
    }
    return HttpProxy(address.substr(0, colon), *port, exclusions);
}

bool HttpProxy::operator==(const HttpProxy &httpProxy) const
{
    return host_ == httpProxy.host_ && port_ == httpProxy.port_ && exclusionList_ == httpProxy.exclusionList_;
}
} // namespace NetManagerStandard
} // namespace OHOS
