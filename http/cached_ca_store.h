#ifndef VORN_HTTP_CACHED_CA_STORE_H
#define VORN_HTTP_CACHED_CA_STORE_H

#include <memory>
#include <string>

#include <curl/curl.h>
#include <openssl/x509_vfy.h>

namespace OHOS {
namespace Vorn {
// One version of a CA file, parsed once: the certificates that transfers naming it verify
// servers against. Connections and TLS sessions verified with it are kept per version too (the
// transfer loop's trust contexts name it): libcurl tells kept connections and sessions apart by
// host, port and CA file options, not by a store installed through the SSL context callback.
class CachedCaStore {
public:
    struct StoreDeleter {
        void operator()(X509_STORE *store) const { X509_STORE_free(store); }
    };
    using StorePtr = std::unique_ptr<X509_STORE, StoreDeleter>;

    CachedCaStore(StorePtr store, std::string version);

    // The certificates of the regular file at `path`, or null when it holds none or is not a
    // regular file (which is then never opened for reading: a FIFO would block the opener).
    static std::shared_ptr<CachedCaStore> Load(const std::string &path, std::string version);

    // Makes `curl` verify servers against this store instead of reading a CA file. False when
    // the handle cannot take a store; it is then left as it was. The store must outlive the handle.
    bool ApplyTo(CURL *curl) const;
    // The file version this store was parsed from.
    const std::string &Version() const;

private:
    static CURLcode InstallStore(CURL *curl, void *sslCtx, void *store);

    StorePtr store_;
    std::string version_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_CACHED_CA_STORE_H
