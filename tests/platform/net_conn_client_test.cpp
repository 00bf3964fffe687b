#include <cstdlib>
#include <list>
#include <optional>
#include <string>

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

TEST(NetConnClientTest, UnsetOrEmptySettingMeansNoProxy)
{
    for (const std::optional<std::string> &setting : {std::optional<std::string>(), std::optional<std::string>("")}) {
        HttpProxy proxy = Sentinel();
        EXPECT_EQ(DefaultProxyFor(setting, proxy), NETMANAGER_SUCCESS);
        EXPECT_EQ(proxy.GetHost(), "");
        EXPECT_EQ(proxy.GetPort(), 0);
        EXPECT_TRUE(proxy.GetExclusionList().empty());
    }
}

TEST(NetConnClientTest, ReadsHostPortAndExclusions)
{
    HttpProxy proxy;
    ASSERT_EQ(DefaultProxyFor("127.0.0.1:8080", proxy), NETMANAGER_SUCCESS);
    EXPECT_EQ(proxy, HttpProxy("127.0.0.1", 8080, {}));

    ASSERT_EQ(DefaultProxyFor("proxy.local:3128;localhost, *.example.invalid,,", proxy), NETMANAGER_SUCCESS);
    EXPECT_EQ(proxy.GetHost(), "proxy.local");
    EXPECT_EQ(proxy.GetPort(), 3128);
    EXPECT_EQ(proxy.GetExclusionList(), (std::list<std::string>{"localhost", "*.example.invalid"}));
}

TEST(NetConnClientTest, PortFollowsTheLastColon)
{
    HttpProxy proxy;
    ASSERT_EQ(DefaultProxyFor("https://proxy.local:3129", proxy), NETMANAGER_SUCCESS);
    EXPECT_EQ(proxy.GetHost(), "https://proxy.local");
    EXPECT_EQ(proxy.GetPort(), 3129);

    ASSERT_EQ(DefaultProxyFor("[::1]:65535;a", proxy), NETMANAGER_SUCCESS);
    EXPECT_EQ(proxy.GetHost(), "[::1]");
    EXPECT_EQ(proxy.GetPort(), 65535);
}

TEST(NetConnClientTest, MalformedSettingFailsAndLeavesTheOutputAlone)
{
    for (const char *setting : {"proxy.local", ":8080", "proxy.local:", "proxy.local:80a", "proxy.local:65536",
             "proxy.local:0", "proxy.local:-1", "proxy.local:99999999999999999999", "https://proxy.local;a,b",
             "   "}) {
        HttpProxy proxy = Sentinel();
        EXPECT_NE(DefaultProxyFor(setting, proxy), NETMANAGER_SUCCESS) << setting;
        EXPECT_EQ(proxy, Sentinel()) << setting;
    }
}

TEST(NetConnClientTest, SettingIsReadOnEveryCall)
{
    HttpProxy proxy;
    ASSERT_EQ(DefaultProxyFor("first:1", proxy), NETMANAGER_SUCCESS);
    ASSERT_EQ(DefaultProxyFor("second:2", proxy), NETMANAGER_SUCCESS);
    EXPECT_EQ(proxy, HttpProxy("second", 2, {}));
}

TEST(HttpProxyTest, ToStringAndFromStringRoundTrip)
{
    HttpProxy proxy("https://proxy.local", 3129, {"a", "b"});
    EXPECT_EQ(proxy.ToString(), "https://proxy.local:3129;a,b");
    EXPECT_EQ(HttpProxy::FromString(proxy.ToString()), proxy);
    EXPECT_EQ(HttpProxy("h", 1, {}).ToString(), "h:1");
    EXPECT_FALSE(HttpProxy::FromString("no-port").has_value());

    HttpProxy withCredentials = proxy;
    withCredentials.SetUserName("user");
    EXPECT_NE(withCredentials, proxy);
    EXPECT_EQ(withCredentials.GetUsername(), "user");
    EXPECT_EQ(proxy.GetUserId(), -1);
}
} // namespace
