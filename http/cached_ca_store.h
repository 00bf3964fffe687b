#ifndef VORN_HTTP_CACHED_CA_STORE_H
#define VORN_HTTP_CACHED_CA_STORE_H

#include <memory>
#include <string>

#include <curl/curl.h>
#include <openssl/x509_vfy.h>

#include "curl_share.h"

namespace OHOS {
namespace Vorn {
// One version of a CA file, parsed once: the certificates that transfers naming it verify
// servers against, and the TLS sessions and DNS results those transfers share. Sessions are
// shared per store on purpose: a resumed session skips certificate verification, and libcurl
// tells its cached sessions apart by host, port and CA file options, not by a store installed
// through the SSL context callback. One share for all stores would let a transfer resume a
// session that a store trusting other CAs had verified.
class CachedCaStore {
public:
    struct StoreDeleter {
        void operator()(X509_STORE *store) const
        {
            X509_STORE_free(store);
        }
    };
    using StorePtr = std::unique_ptr<X509_STORE, StoreDeleter>;

    explicit CachedCaStore(StorePtr store);

    // The certificates of the file at `path`, or null when it holds none.
    static std::shared_ptr<CachedCaStore> Load(const std::string &path);

    // Makes `curl` verify servers against this store instead of reading a CA file, and share
    // sessions and DNS results with the other transfers of this store. False when the handle
    // cannot take a store; it is then left as it was. The store must outlive the handle.
    bool ApplyTo(CURL *curl) const;

private:
    static CURLcode InstallStore(CURL *curl, void *sslCtx, void *store);

    StorePtr store_;
    CurlShare share_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_CACHED_CA_STORE_H
