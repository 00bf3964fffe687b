#ifndef VORN_HTTP_CURL_SHARE_H
#define VORN_HTTP_CURL_SHARE_H

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>

#include <curl/curl.h>

namespace OHOS {
namespace Vorn {
// A libcurl share of TLS sessions and DNS results for the handles that name it, with one lock
// per kind of shared data so that a session look-up never waits for a DNS one. Connections are
// not shared: this libcurl does not make a shared connection pool safe across threads.
class CurlShare {
public:
    CurlShare();
    ~CurlShare() = default;
    CurlShare(const CurlShare &) = delete;
    CurlShare &operator=(const CurlShare &) = delete;

    // Null when libcurl could not set the share up; handles then simply share nothing.
    CURLSH *Get() const;

private:
    struct ShareDeleter {
        void operator()(CURLSH *share) const
        {
            curl_share_cleanup(share);
        }
    };

    static void Lock(CURL *curl, curl_lock_data data, curl_lock_access access, void *self);
    static void Unlock(CURL *curl, curl_lock_data data, void *self);

    std::array<std::mutex, static_cast<size_t>(CURL_LOCK_DATA_LAST)> locks_;
    // Declared after the locks: libcurl may still take them while it cleans the share up.
    std::unique_ptr<CURLSH, ShareDeleter> share_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_CURL_SHARE_H
