#ifndef VORN_HTTP_CURL_SHARE_H
#define VORN_HTTP_CURL_SHARE_H

#include <memory>

#include <curl/curl.h>

namespace OHOS {
namespace Vorn {
// A libcurl share of kept connections, TLS sessions and DNS results for the transfers of one
// trust context. It has no lock callbacks on purpose: only the transfer loop's thread ever
// attaches it to a handle, runs transfers with it and cleans it up, and libcurl does not make
// a shared connection pool safe across threads anyway.
class CurlShare {
public:
    CurlShare();
    ~CurlShare() = default;
    CurlShare(const CurlShare &) = delete;
    CurlShare &operator=(const CurlShare &) = delete;

    // Null when libcurl could not set the share up; transfers then share nothing.
    CURLSH *Get() const;

private:
    struct ShareDeleter {
        void operator()(CURLSH *share) const { curl_share_cleanup(share); }
    };

    std::unique_ptr<CURLSH, ShareDeleter> share_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_CURL_SHARE_H
