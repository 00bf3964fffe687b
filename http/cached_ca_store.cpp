#include "cached_ca_store.h"

#include <utility>

#include <openssl/err.h>
#include <openssl/ssl.h>

namespace OHOS {
namespace Vorn {
namespace {
bool HoldsCertificate(X509_STORE *store)
{
    STACK_OF(X509_OBJECT) *objects = X509_STORE_get0_objects(store);
    for (int i = 0; i < sk_X509_OBJECT_num(objects); ++i) {
        if (X509_OBJECT_get_type(sk_X509_OBJECT_value(objects, i)) == X509_LU_X509) {
            return true;
        }
    }
    return false;
}
} // namespace

CachedCaStore::CachedCaStore(StorePtr store) : store_(std::move(store))
{
}

std::shared_ptr<CachedCaStore> CachedCaStore::Load(const std::string &path)
{
    StorePtr store(X509_STORE_new());
    if (store == nullptr) {
        return nullptr;
    }
    // The reader libcurl uses for a CA file, so the same files load with the same content.
    const bool loaded = X509_STORE_load_file(store.get(), path.c_str()) == 1 && HoldsCertificate(store.get());
    // A failed read leaves errors on this thread's queue, where libcurl would later take them
    // for the cause of a TLS failure.
    ERR_clear_error();
    if (!loaded) {
        return nullptr;
    }
    // Without the cache, libcurl trusts its built-in CA directory besides "caFile"; the cached
    // store looks there too, so a transfer trusts exactly what it trusted before.
    const curl_version_info_data *curlInfo = curl_version_info(CURLVERSION_NOW);
    if (curlInfo != nullptr && curlInfo->capath != nullptr) {
        (void)X509_STORE_load_path(store.get(), curlInfo->capath);
        ERR_clear_error();
    }
    // The chain-building flags libcurl sets on the store it fills itself when it verifies peers.
    (void)X509_STORE_set_flags(store.get(), X509_V_FLAG_TRUSTED_FIRST | X509_V_FLAG_PARTIAL_CHAIN);
    return std::make_shared<CachedCaStore>(std::move(store));
}

bool CachedCaStore::ApplyTo(CURL *curl) const
{
    if (curl_easy_setopt(curl, CURLOPT_SSL_CTX_FUNCTION, InstallStore) != CURLE_OK ||
        curl_easy_setopt(curl, CURLOPT_SSL_CTX_DATA, store_.get()) != CURLE_OK) {
        (void)curl_easy_setopt(curl, CURLOPT_SSL_CTX_FUNCTION, static_cast<curl_ssl_ctx_callback>(nullptr));
        return false;
    }
    (void)curl_easy_setopt(curl, CURLOPT_CAINFO, static_cast<const char *>(nullptr));
    (void)curl_easy_setopt(curl, CURLOPT_CAPATH, static_cast<const char *>(nullptr));
    (void)curl_easy_setopt(curl, CURLOPT_SHARE, share_.Get());
    return true;
}

// Runs for each TLS connection of the handle. The store becomes the connection's verification
// store, which OpenSSL checks the server's chain against in place of the context's own store.
// This libcurl prepares that own store only after this callback (and sets flags on it), so
// replacing it would let every transfer write to the shared store; the verification store is
// never touched by libcurl.
CURLcode CachedCaStore::InstallStore(CURL *, void *sslCtx, void *store)
{
    if (SSL_CTX_set1_verify_cert_store(static_cast<SSL_CTX *>(sslCtx), static_cast<X509_STORE *>(store)) != 1) {
        return CURLE_SSL_CACERT_BADFILE;
    }
    return CURLE_OK;
}
} // namespace Vorn
} // namespace OHOS
