#ifndef VORN_TESTS_SUPPORT_LOCAL_SERVER_FIXTURE_H
#define VORN_TESTS_SUPPORT_LOCAL_SERVER_FIXTURE_H

#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "certificate_authority.h"
#include "local_https_server.h"
#include "scoped_env.h"
#include "temp_dir.h"

namespace VornTest {
// A local HTTPS server with a CA made for this test. Proxy variables are cleared, for this
// process and the children it starts: nothing may leave 127.0.0.1.
class LocalServerFixture : public testing::Test {
protected:
    void SetUp() override
    {
        auto files = VornTestbed::MakeCertificateFiles(dir_.Path("pki"));
        ASSERT_TRUE(files.has_value());
        files_ = *files;
        server_ = std::make_unique<VornTestbed::LocalHttpsServer>(VornTestbed::ServerOptions::Tls(files_));
        ASSERT_TRUE(server_->Start());
    }

    std::string Url(const std::string &path) const { return server_->BaseUrl() + path; }

    VornTestbed::TempDir dir_;
    VornTestbed::CertificateFiles files_;
    std::unique_ptr<VornTestbed::LocalHttpsServer> server_;

private:
    ScopedEnv noProxy_ {"VORN_DEFAULT_HTTP_PROXY", std::nullopt};
    ScopedEnv noHttpsProxy_ {"https_proxy", std::nullopt};
    ScopedEnv noUpperHttpsProxy_ {"HTTPS_PROXY", std::nullopt};
    ScopedEnv noAllProxy_ {"ALL_PROXY", std::nullopt};
    ScopedEnv noLowerAllProxy_ {"all_proxy", std::nullopt};
};

inline std::string ReadFile(const std::string &path)
{
    std::ifstream in(path);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_LOCAL_SERVER_FIXTURE_H
