#include "certificate_authority.h"

#include <cstdio>
#include <filesystem>
#include <functional>
#include <system_error>

#include <openssl/err.h>
#include <openssl/pem.h>

namespace VornTestbed {
namespace {
constexpr int kSerialBits = 63;
constexpr int kX509Version3 = 2;

bool Fail(const char *what)
{
    std::fprintf(stderr, "testbed: %s failed\n", what);
    ERR_print_errors_fp(stderr);
    return false;
}

EvpPkeyPtr NewKey()
{
    return EvpPkeyPtr(EVP_EC_gen("P-256"));
}

// A random serial per certificate, so that no two certificates a client sees share one.
bool SetRandomSerial(X509 *certificate)
{
    BignumPtr serial(BN_new());
    return serial && BN_rand(serial.get(), kSerialBits, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ANY) == 1 &&
        BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(certificate)) != nullptr;
}

X509Ptr NewCertificate(EVP_PKEY *key, const std::string &commonName, std::chrono::seconds validFrom,
    std::chrono::seconds validUntil)
{
    X509Ptr certificate(X509_new());
    if (!certificate || X509_set_version(certificate.get(), kX509Version3) != 1 ||
        !SetRandomSerial(certificate.get()) ||
        X509_gmtime_adj(X509_getm_notBefore(certificate.get()), static_cast<long>(validFrom.count())) == nullptr ||
        X509_gmtime_adj(X509_getm_notAfter(certificate.get()), static_cast<long>(validUntil.count())) == nullptr ||
        X509_set_pubkey(certificate.get(), key) != 1) {
        return nullptr;
    }
    X509_NAME *name = X509_get_subject_name(certificate.get());
    if (X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
            reinterpret_cast<const unsigned char *>(commonName.c_str()), -1, -1, 0) != 1) {
        return nullptr;
    }
    return certificate;
}

bool AddExtension(X509 *certificate, X509 *issuer, int nid, const std::string &value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509ExtensionPtr extension(X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str()));
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

std::string Join(const std::vector<std::string> &items)
{
    std::string joined;
    for (const auto &item : items) {
        joined += (joined.empty() ? "" : ",") + item;
    }
    return joined;
}

bool WritePem(const std::string &path, const std::function<int(BIO *)> &write)
{
    BioPtr file(BIO_new_file(path.c_str(), "w"));
    return file && write(file.get()) == 1;
}
} // namespace

CertificateOptions CertificateOptions::Expired()
{
    CertificateOptions options;
    options.validFrom = std::chrono::hours(-48);
    options.validUntil = std::chrono::hours(-24);
    return options;
}

CertificateOptions CertificateOptions::ForHost(const std::string &hostName)
{
    CertificateOptions options;
    options.commonName = hostName;
    options.subjectAltNames = {"DNS:" + hostName};
    return options;
}

CertificateAuthority::CertificateAuthority(EvpPkeyPtr key, X509Ptr certificate)
    : key_(std::move(key)), certificate_(std::move(certificate))
{
}

std::optional<CertificateAuthority> CertificateAuthority::Create(const std::string &commonName)
{
    EvpPkeyPtr key = NewKey();
    if (!key) {
        Fail("CA key generation");
        return std::nullopt;
    }
    X509Ptr certificate = NewCertificate(key.get(), commonName, std::chrono::hours(-1), std::chrono::hours(24 * 365));
    X509 *self = certificate.get();
    if (!certificate || X509_set_issuer_name(self, X509_get_subject_name(self)) != 1 ||
        !AddExtension(self, self, NID_basic_constraints, "critical,CA:TRUE") ||
        !AddExtension(self, self, NID_key_usage, "critical,keyCertSign,cRLSign") ||
        !AddExtension(self, self, NID_subject_key_identifier, "hash") ||
        X509_sign(self, key.get(), EVP_sha256()) <= 0) {
        Fail("CA certificate");
        return std::nullopt;
    }
    return CertificateAuthority(std::move(key), std::move(certificate));
}

bool CertificateAuthority::WriteCertificate(const std::string &path) const
{
    return WritePem(path, [this](BIO *file) { return PEM_write_bio_X509(file, certificate_.get()); }) ||
        Fail("writing the CA certificate");
}

bool CertificateAuthority::IssueServerCertificate(const CertificateOptions &options, const std::string &certPath,
    const std::string &keyPath) const
{
    EvpPkeyPtr key = NewKey();
    X509Ptr certificate =
        key ? NewCertificate(key.get(), options.commonName, options.validFrom, options.validUntil) : nullptr;
    X509 *leaf = certificate.get();
    if (!certificate || X509_set_issuer_name(leaf, X509_get_subject_name(certificate_.get())) != 1 ||
        !AddExtension(leaf, certificate_.get(), NID_basic_constraints, "critical,CA:FALSE") ||
        !AddExtension(leaf, certificate_.get(), NID_key_usage, "critical,digitalSignature") ||
        !AddExtension(leaf, certificate_.get(), NID_ext_key_usage, "serverAuth") ||
        !AddExtension(leaf, certificate_.get(), NID_subject_key_identifier, "hash") ||
        !AddExtension(leaf, certificate_.get(), NID_authority_key_identifier, "keyid:always") ||
        (!options.subjectAltNames.empty() &&
            !AddExtension(leaf, certificate_.get(), NID_subject_alt_name, Join(options.subjectAltNames))) ||
        X509_sign(leaf, key_.get(), EVP_sha256()) <= 0) {
        return Fail("server certificate");
    }
    bool written = WritePem(certPath, [leaf](BIO *file) { return PEM_write_bio_X509(file, leaf); }) &&
        WritePem(keyPath, [&key](BIO *file) {
            return PEM_write_bio_PrivateKey(file, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
        });
    return written || Fail("writing the server certificate");
}

std::optional<CertificateFiles> MakeCertificateFiles(const std::string &directory, const CertificateOptions &options)
{
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    auto authority = CertificateAuthority::Create();
    CertificateFiles files {directory + "/ca.pem", directory + "/server.pem", directory + "/server.key"};
    if (error || !authority || !authority->WriteCertificate(files.caFile) ||
        !authority->IssueServerCertificate(options, files.certFile, files.keyFile)) {
        return std::nullopt;
    }
    return files;
}
} // namespace VornTestbed
