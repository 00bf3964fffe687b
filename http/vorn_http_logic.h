#ifndef VORN_HTTP_VORN_HTTP_LOGIC_H
#define VORN_HTTP_VORN_HTTP_LOGIC_H

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include <curl/curl.h>

#include "response_size_guard.h"
#include "vorn_init_config_parser.h"

namespace OHOS {
namespace Vorn {
class CachedCaStore;

// One HTTPS POST of one attempt: prepare the handle, perform the transfer, then read the
// status, the response heads (as clients get them) and the body.
class HttpLogic {
public:
    // The fixed transfer settings (also what a bare-libcurl comparison must use).
    static constexpr const char *ALLOWED_PROTOCOLS = "https";
    static constexpr const char *CIPHER_LIST = "AESGCM:!RSA:!DHE:!MEDIUM:!aNULL:!eNULL:!EXPORT:!DES:!3DES:!MD5:!EXP:"
                                               "!PSK:!RC4:!SRP:!aECDH:!ADH:!CAMELLIA:!LOW";
    static constexpr long MAX_REDIRECTS = 1;
    static constexpr long CONNECT_TIMEOUT_SECONDS = 10;
    static constexpr long TRANSFER_TIMEOUT_SECONDS = 10;
    static constexpr long VERIFY_HOST_NAME = 2;

    HttpLogic(VornInitConfigParser::VornRequestInfo info, std::string url);
    virtual ~HttpLogic() = default;
    HttpLogic(const HttpLogic &) = delete;
    HttpLogic &operator=(const HttpLogic &) = delete;

    // Initialises libcurl once per process; a failed attempt is retried by the next call.
    static bool GlobalInit();

    // How the transfer is held to HTTPS: a setter per form of the protocol options, each
    // returning libcurl's result for (option, value).
    struct ProtocolSetters {
        std::function<CURLcode(CURLoption, const char *)> byNames;
        std::function<CURLcode(CURLoption, long)> byBitmask;
    };
    // Restricts transfers and redirects to HTTPS by protocol names (libcurl 7.85 and later), else
    // by the older bitmask options; false when neither form applies.
    static bool RestrictToHttps(const ProtocolSetters &set);

    int InitHttpLogic();
    // Caps the heads clients get plus the body, both counted JSON-escaped, at `limit` bytes: the
    // transfer stops taking bytes once they can no longer fit. Call after InitHttpLogic.
    void LimitResponseSize(size_t limit);
    long PostHttpsRequest();
    void SetupOtherCurlOptions() const;
    static size_t OnWriteBody(const char *data, size_t size, size_t nmemb, HttpLogic *logic);
    static size_t OnWriteHead(const char *data, size_t size, size_t nmemb, HttpLogic *logic);

    // Whether the transfer stopped because the response could not fit; then the escaped size
    // the heads and body had reached.
    bool ResponseTooLarge() const;
    size_t ResponseSizeReached() const;
    // The HTTP status of the last response received, also of a transfer that was stopped; 0 if none.
    long GetResponseStatus() const;

    std::string GetResponseHeads() const;
    // The heads clients receive for a transfer that collected `rawHeads` after posting `postBody`.
    static std::string BuildResponseHeads(const VornInitConfigParser::VornRequestInfo &info,
        const std::string &postBody, const std::string &rawHeads);
    std::string GetResponseBody() const;

    static void GetHttpProxyInfo(std::string &host, int &port, std::string &exclusions);
    // Applies the proxy the transfer chose; an empty host means a direct connection.
    void SetCurlHttpProxy() const;

private:
    // The device's default proxy as a transfer applies it; an empty host means none.
    struct ProxyChoice {
        std::string host;
        int port = 0;
        std::string exclusions;
        long type = CURLPROXY_HTTP;
    };

    struct CurlDeleter {
        void operator()(CURL *curl) const { curl_easy_cleanup(curl); }
    };
    struct SlistDeleter {
        void operator()(curl_slist *list) const { curl_slist_free_all(list); }
    };

    bool SetRequiredOption(CURLoption option, const void *value, const char *failureLog) const;
    static ProxyChoice ChooseProxy();
    bool SetTransferOptions();
    bool PassesRawHeads() const;
    void SetCaOptions();
    void SetLoopOptions();
    std::string TrustContext() const;
    // Adds the transfer's new or kept connection to the service's counters.
    void CountConnections() const;

    VornInitConfigParser::VornRequestInfo requestInfo_;
    // The attempt's base URL, extended with the query text by InitHttpLogic.
    std::string url_;
    std::string postBody_;
    std::string responseHeads_;
    std::string responseBody_;
    ResponseSizeGuard sizeGuard_;
    // Set when the transfer verifies with a cached store; declared before the handle, which
    // uses the store's session cache until it is freed.
    std::shared_ptr<const CachedCaStore> caStore_;
    // The proxy this transfer goes through, part of its trust context.
    ProxyChoice proxy_;
    // The header list is declared after the handle so it is freed first, as the handle may
    // still point at it.
    std::unique_ptr<CURL, CurlDeleter> curl_;
    std::unique_ptr<curl_slist, SlistDeleter> headerList_;

    static std::mutex globalInitMutex_;
    static bool globalInited_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_VORN_HTTP_LOGIC_H
