#ifndef VORN_TESTS_SUPPORT_HTTPS_FIXTURE_H
#define VORN_TESTS_SUPPORT_HTTPS_FIXTURE_H

#include <string>
#include <vector>

#include "local_server_fixture.h"
#include "vorn_init_config_parser.h"

namespace VornTest {
// A local HTTPS server and the request description a client would send to it.
class HttpsFixture : public LocalServerFixture {
protected:
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
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_HTTPS_FIXTURE_H
