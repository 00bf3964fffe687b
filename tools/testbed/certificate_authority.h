#ifndef VORN_TESTBED_CERTIFICATE_AUTHORITY_H
#define VORN_TESTBED_CERTIFICATE_AUTHORITY_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "openssl_handles.h"

namespace VornTestbed {
// What a server certificate says about itself. The defaults suit a server on 127.0.0.1.
struct CertificateOptions {
    std::string commonName = "localhost";
    std::vector<std::string> subjectAltNames {"DNS:localhost", "IP:127.0.0.1"};
    // Validity, relative to now.
    std::chrono::seconds validFrom = std::chrono::hours(-1);
    std::chrono::seconds validUntil = std::chrono::hours(24 * 30);

    // A certificate that ran out yesterday.
    static CertificateOptions Expired();
    // A certificate that names only `hostName`, so it does not match 127.0.0.1 or localhost.
    static CertificateOptions ForHost(const std::string &hostName);
};

// PEM files a server and its clients need.
struct CertificateFiles {
    std::string caFile;
    std::string certFile;
    std::string keyFile;
};

// A self-signed CA (prime256v1 key) that signs server certificates. Every instance is a new,
// independent CA, so a second one stands for "a certificate from another CA".
class CertificateAuthority {
public:
    // Null (with OpenSSL's errors on stderr) when key or certificate cannot be made.
    static std::optional<CertificateAuthority> Create(const std::string &commonName = "Vorn Testbed CA");

    bool WriteCertificate(const std::string &path) const;
    // Writes a new key and a certificate for it, signed by this CA.
    bool IssueServerCertificate(const CertificateOptions &options, const std::string &certPath,
        const std::string &keyPath) const;

private:
    CertificateAuthority(EvpPkeyPtr key, X509Ptr certificate);

    EvpPkeyPtr key_;
    X509Ptr certificate_;
};

// The usual set: a fresh CA and one server certificate it signed, written as ca.pem, server.pem
// and server.key into `directory` (created when missing).
std::optional<CertificateFiles> MakeCertificateFiles(const std::string &directory,
    const CertificateOptions &options = {});
} // namespace VornTestbed

#endif // VORN_TESTBED_CERTIFICATE_AUTHORITY_H
