#ifndef VORN_TESTBED_OPENSSL_HANDLES_H
#define VORN_TESTBED_OPENSSL_HANDLES_H

#include <memory>

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace VornTestbed {
// Frees an OpenSSL object with the library's own free function, so every handle is a unique_ptr.
template <auto FreeFunction> struct OpenSslDeleter {
    template <typename T> void operator()(T *handle) const { FreeFunction(handle); }
};

using SslCtxPtr = std::unique_ptr<SSL_CTX, OpenSslDeleter<SSL_CTX_free>>;
using SslPtr = std::unique_ptr<SSL, OpenSslDeleter<SSL_free>>;
using EvpPkeyPtr = std::unique_ptr<EVP_PKEY, OpenSslDeleter<EVP_PKEY_free>>;
using X509Ptr = std::unique_ptr<X509, OpenSslDeleter<X509_free>>;
using X509ExtensionPtr = std::unique_ptr<X509_EXTENSION, OpenSslDeleter<X509_EXTENSION_free>>;
using BioPtr = std::unique_ptr<BIO, OpenSslDeleter<BIO_free_all>>;
using BignumPtr = std::unique_ptr<BIGNUM, OpenSslDeleter<BN_free>>;
} // namespace VornTestbed

#endif // VORN_TESTBED_OPENSSL_HANDLES_H
