#include <cstdlib>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "net_conn_client.h"

#include "scoped_env.h"

namespace {
using namespace OHOS::NetManagerStandard;

constexpr char PROXY_ENV[] = "VORN_DEFAULT_HTTP_PROXY";

// Sets (or unsets, for nullopt) an environment variable and restores the old value on scope exit.
using VornTest::ScopedEnv;

// A proxy that no parse result equals, to see whether a failed call touched its output.
HttpProxy Sentinel()
{
    return HttpProxy("sentinel", 1, {"keep"});
}

int32_t DefaultProxyFor(const std::optional<std::string> &setting, HttpProxy &proxy)
{
    ScopedEnv env(PROXY_ENV, setting);
    return NetConnClient::GetInstance().GetDefaultHttpProxy(proxy);
}

TEST(NetConnClientTest, ReadsHostPortAndExclusionsOnEveryCall)
{
    struct Case {
        std::optional<std::string> setting;
        HttpProxy expected;
    };
    const std::vector<Case> cases = {
        {std::nullopt, HttpProxy("", 0, {})},
        {"", HttpProxy("", 0, {})},
        {"127.0.0.1:8080", HttpProxy("127.0.0.1", 8080, {})},
        {"proxy.local:3128;localhost, *.example.invalid,,",
            HttpProxy("proxy.local", 3128, {"localhost", "*.example.invalid"})},
        {"https://proxy.local:3129", HttpProxy("https://proxy.local", 3129, {})}, // the port follows the last colon
        {"[::1]:65535;a", HttpProxy("[::1]", 65535, {"a"})},
    };
    for (const Case &c : cases) {
        HttpProxy proxy = Sentinel();
        EXPECT_EQ(DefaultProxyFor(c.setting, proxy), NETMANAGER_SUCCESS) << c.setting.value_or("<unset>");
        EXPECT_EQ(proxy, c.expected) << c.setting.value_or("<unset>");
    }
}

TEST(NetConnClientTest, MalformedSettingFailsAndLeavesTheOutputAlone)
{
    for (const char *setting : {"proxy.local", ":8080", "proxy.local:", "proxy.local:80a", "proxy.local:65536",
             "proxy.local:0", "proxy.local:-1", "proxy.local:99999999999999999999", "https://proxy.local;a,b", "   "}) {
        HttpProxy proxy = Sentinel();
        EXPECT_NE(DefaultProxyFor(setting, proxy), NETMANAGER_SUCCESS) << setting;
        EXPECT_EQ(proxy, Sentinel()) << setting;
    }
}
} // namespace
