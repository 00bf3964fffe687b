#ifndef VORN_TESTS_SUPPORT_HTTPS_FIXTURE_H
#define VORN_TESTS_SUPPORT_HTTPS_FIXTURE_H

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "certificate_authority.h"
#include "local_https_server.h"
#include "scoped_env.h"
#include "temp_dir.h"
#include "vorn_init_config_parser.h"

namespace VornTest {
// A local HTTPS server with a CA made for this test, plus the request description a client
// would send to it. Proxy variables are cleared: nothing may leave 127.0.0.1.
class HttpsFixture : public testing::Test {
protected:
    void SetUp() override
    {
        auto files = VornTestbed::MakeCertificateFiles(dir_.Path("pki"));
        ASSERT_TRUE(files.has_value());
        files_ = *files;
        server_ = std::make_unique<VornTestbed::LocalHttpsServer>(VornTestbed::ServerOptions::Tls(files_));
        ASSERT_TRUE(server_->Start());
    }

    std::string Url(const std::string &path) const
    {
        return server_->BaseUrl() + path;
    }

    OHOS::Vorn::VornInitConfigParser::VornRequestInfo Request(const std::vector<std::string> &baseUrls) const
    {
        OHOS::Vorn::VornInitConfigParser::VornRequestInfo info;
        info.baseUrls = baseUrls;
        info.caFile = files_.caFile;
        info.appVersion = "1.2.3";
        info.queryHeaders = "appId=42&scope=test";
        info.requestHeaders = {"X-Client: vorn-test", "Accept: application/json"};
        info.requestBody = {"alpha", "beta"};
        return info;
    }

    VornTestbed::TempDir dir_;
    VornTestbed::CertificateFiles files_;
    std::unique_ptr<VornTestbed::LocalHttpsServer> server_;

private:
    ScopedEnv noProxy_{"VORN_DEFAULT_HTTP_PROXY", std::nullopt};
    ScopedEnv noHttpsProxy_{"https_proxy", std::nullopt};
    ScopedEnv noUpperHttpsProxy_{"HTTPS_PROXY", std::nullopt};
    ScopedEnv noAllProxy_{"ALL_PROXY", std::nullopt};
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_HTTPS_FIXTURE_H
