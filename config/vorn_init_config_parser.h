#ifndef VORN_CONFIG_VORN_INIT_CONFIG_PARSER_H
#define VORN_CONFIG_VORN_INIT_CONFIG_PARSER_H

#include <cstdint>
#include <string>
#include <vector>

#include "nlohmann/json.hpp"

namespace OHOS {
namespace Vorn {
// Fills the request description and the server configuration from parsed JSON. A present key of
// the wrong kind makes the JSON library throw its type_error; fields read before it keep their new
// values. Callers catch the library's exception and turn it into their own result.
class VornInitConfigParser {
public:
    struct HttpProxyInfo {
        std::string proxyUrl;
        std::string noProxyUrls;
        std::string proxyUserName;
        std::string proxyPassword;
    };

    struct VornRequestInfo {
        std::string interfaceName;
        std::string appVersion;
        std::string caFile;
        std::string saType;
        std::vector<std::string> baseUrls;
        int32_t requestTimeOut = 0;
        std::vector<std::string> requestHeaders;
        std::string queryHeaders;
        std::vector<std::string> requestBody;
        HttpProxyInfo proxyInfo;
    };

    struct ServerConfig {
        std::vector<std::string> qelBaseUrls;
        std::string qelQueryEndpoint;
        int32_t qelQueryTimeout = 0;
    };

    static void FromJson(const nlohmann::json &jsonObject, VornRequestInfo &requestInfo);
    static void ProxyInfoFromJson(const nlohmann::json &jsonObject, HttpProxyInfo &proxyInfo);
    static void ServerConfigFromJson(const nlohmann::json &jsonObject, ServerConfig &serverConfig);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_CONFIG_VORN_INIT_CONFIG_PARSER_H
