#include "curl_share.h"

#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
CurlShare::CurlShare() : share_(curl_share_init())
{
    if (share_ == nullptr) {
        VORN_LOGW("CurlShare: curl_share_init failed");
        return;
    }
    CURLSH *share = share_.get();
    if (curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_CONNECT) != CURLSHE_OK ||
        curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION) != CURLSHE_OK ||
        curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS) != CURLSHE_OK) {
        VORN_LOGW("CurlShare: cannot share connections, TLS sessions and DNS results");
        share_.reset();
    }
}

CURLSH *CurlShare::Get() const
{
    return share_.get();
}
} // namespace Vorn
} // namespace OHOS
