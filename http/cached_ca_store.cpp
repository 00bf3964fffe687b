#include "cached_ca_store.h"

#include <cstdio>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <openssl/err.h>
#include <openssl/pem.h>
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

// The whole file, read through one descriptor that is only read once it is known to be a
// regular file: opening without blocking keeps a FIFO put in the file's place from stalling us.
struct FileCloser {
    void operator()(FILE *file) const { (void)fclose(file); }
};

std::optional<std::string> ReadRegularFile(const std::string &path)
{
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) {
        return std::nullopt;
    }
    std::unique_ptr<FILE, FileCloser> file(fdopen(fd, "rb"));
    if (file == nullptr) {
        (void)close(fd);
        return std::nullopt;
    }
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        return std::nullopt;
    }
    std::string content;
    char buffer[16384];
    size_t got = 0;
    while ((got = fread(buffer, 1, sizeof(buffer), file.get())) > 0) {
        content.append(buffer, got);
    }
    if (ferror(file.get()) != 0) {
        return std::nullopt;
    }
    return content;
}

struct BioDeleter {
    void operator()(BIO *bio) const { BIO_free(bio); }
};
struct InfoStackDeleter {
    void operator()(STACK_OF(X509_INFO) * infos) const { sk_X509_INFO_pop_free(infos, X509_INFO_free); }
};

// What OpenSSL's CA file reader (and so libcurl) takes from a PEM file: every certificate and
// every revocation list in it.
bool AddPemObjects(X509_STORE *store, const std::string &pem)
{
    std::unique_ptr<BIO, BioDeleter> bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    if (bio == nullptr) {
        return false;
    }
    std::unique_ptr<STACK_OF(X509_INFO), InfoStackDeleter> infos(
        PEM_X509_INFO_read_bio(bio.get(), nullptr, nullptr, nullptr));
    if (infos == nullptr) {
        return false;
    }
    for (int i = 0; i < sk_X509_INFO_num(infos.get()); ++i) {
        X509_INFO *info = sk_X509_INFO_value(infos.get(), i);
        if (info->x509 != nullptr && X509_STORE_add_cert(store, info->x509) != 1) {
            return false;
        }
        if (info->crl != nullptr && X509_STORE_add_crl(store, info->crl) != 1) {
            return false;
        }
    }
    return true;
}
} // namespace

CachedCaStore::CachedCaStore(StorePtr store, std::string version)
    : store_(std::move(store)), version_(std::move(version))
{
}

std::shared_ptr<CachedCaStore> CachedCaStore::Load(const std::string &path, std::string version)
{
    const std::optional<std::string> pem = ReadRegularFile(path);
    StorePtr store(X509_STORE_new());
    if (!pem.has_value() || store == nullptr) {
        return nullptr;
    }
    const bool loaded = AddPemObjects(store.get(), *pem) && HoldsCertificate(store.get());
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
    return std::make_shared<CachedCaStore>(std::move(store), std::move(version));
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
    return true;
}

const std::string &CachedCaStore::Version() const
{
    return version_;
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
