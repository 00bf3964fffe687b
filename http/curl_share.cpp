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
    if (curl_share_setopt(share, CURLSHOPT_LOCKFUNC, Lock) != CURLSHE_OK ||
        curl_share_setopt(share, CURLSHOPT_UNLOCKFUNC, Unlock) != CURLSHE_OK ||
        curl_share_setopt(share, CURLSHOPT_USERDATA, this) != CURLSHE_OK ||
        curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION) != CURLSHE_OK ||
        curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS) != CURLSHE_OK) {
        VORN_LOGW("CurlShare: cannot share TLS sessions and DNS results");
        share_.reset();
    }
}

CURLSH *CurlShare::Get() const
{
    return share_.get();
}

void CurlShare::Lock(CURL *, curl_lock_data data, curl_lock_access, void *self)
{
    static_cast<CurlShare *>(self)->locks_[static_cast<size_t>(data)].lock();
}

void CurlShare::Unlock(CURL *, curl_lock_data data, void *self)
{
    static_cast<CurlShare *>(self)->locks_[static_cast<size_t>(data)].unlock();
}
} // namespace Vorn
} // namespace OHOS
