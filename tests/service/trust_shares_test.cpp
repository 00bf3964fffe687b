#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <curl/curl.h>
#include <gtest/gtest.h>

#include "background_process.h"
#include "connect_proxy.h"
#include "hilog_host.h"
#include "loopback_socket.h"
#include "transport_fixture.h"
#include "trust_shares.h"
#include "vorn_metrics.h"

namespace {
using OHOS::Vorn::TrustShares;
using OHOS::Vorn::VornMetrics;
using VornTestbed::HttpResponse;

// Connections are told apart by what the server counts: each TCP connection it accepts.
class KeptConnectionTest : public VornTest::TransportFixture {
protected:
    void SetUp() override
    {
        TransportFixture::SetUp();
        server_->Respond("/k", HttpResponse::Text(200, "k"));
    }

    long Post(const OHOS::Vorn::VornInitConfigParser::VornRequestInfo &info) const
    {
        return TransportFixture::Post(info, Url("/k")).status;
    }

    long Post() const { return Post(Request({})); }

    // Puts `content` in place of `path` the way bundles are updated: a new file renamed over it.
    void Replace(const std::string &path, const std::string &content) const
    {
        const std::string staged = dir_.WriteFile("staged.pem", content);
        ASSERT_EQ(std::rename(staged.c_str(), path.c_str()), 0);
    }
};

// The kept connection was verified against the fixture's CA; a transfer naming another CA, or a
// CA file whose content changed, must verify for itself, and fail.
TEST_F(KeptConnectionTest, AnUntrustingCaFileNeverTakesAVerifiedConnection)
{
    auto other = VornTestbed::MakeCertificateFiles(dir_.Path("other"));
    ASSERT_TRUE(other.has_value());
    auto untrusting = Request({});
    untrusting.caFile = other->caFile;

    ASSERT_EQ(Post(), 200);
    EXPECT_EQ(Post(untrusting), -1);
    EXPECT_EQ(Post(untrusting), -1);
    // Two connections of their own, neither carrying a request. (The server counts a failed
    // handshake only after the client has gone, so that count is no condition to assert on.)
    EXPECT_EQ(server_->Connections(), 3u);
    EXPECT_EQ(server_->RequestCount("/k"), 1u);
    // The trusted connection is still kept for its own context.
    EXPECT_EQ(Post(), 200);
    EXPECT_EQ(server_->Connections(), 3u);

    const std::string trusted = VornTest::ReadFile(files_.caFile);
    auto changing = Request({});
    changing.caFile = dir_.WriteFile("trust/ca.pem", trusted);
    ASSERT_EQ(Post(changing), 200);
    EXPECT_EQ(server_->Connections(), 4u);
    Replace(changing.caFile, VornTest::ReadFile(other->caFile));
    EXPECT_EQ(Post(changing), -1);
    EXPECT_EQ(server_->Connections(), 5u);
    Replace(changing.caFile, trusted);
    EXPECT_EQ(Post(changing), 200);
    EXPECT_EQ(server_->Connections(), 6u);
    EXPECT_EQ(server_->RequestCount("/k"), 4u);
}

TEST_F(KeptConnectionTest, RequestsInARowShareOneConnectionButEachRouteGetsItsOwn)
{
    const uint64_t openedBefore = VornMetrics::Get(VornMetrics::Counter::CONNECTIONS_OPENED);
    const uint64_t reusedBefore = VornMetrics::Get(VornMetrics::Counter::CONNECTIONS_REUSED);
    ASSERT_EQ(Post(), 200);
    ASSERT_EQ(Post(), 200);
    EXPECT_EQ(VornMetrics::Get(VornMetrics::Counter::CONNECTIONS_OPENED), openedBefore + 1);
    EXPECT_EQ(VornMetrics::Get(VornMetrics::Counter::CONNECTIONS_REUSED), reusedBefore + 1);
    auto bound = Request({});
    bound.interfaceName = "lo";
    EXPECT_EQ(Post(bound), 200);
    EXPECT_EQ(Post(bound), 200);
    EXPECT_EQ(server_->Connections(), 2u);
    bound.interfaceName = "vorn-no-such-if0";
    EXPECT_EQ(Post(bound), -1);
    // libcurl itself would give the bound connection to a transfer that names no interface.
    EXPECT_EQ(Post(), 200);
    EXPECT_EQ(server_->Connections(), 2u);

    VornTestbed::ConnectProxy proxy;
    ASSERT_TRUE(proxy.Start());
    const std::string proxySetting = "127.0.0.1:" + std::to_string(proxy.Port());
    {
        VornTest::ScopedEnv env("VORN_DEFAULT_HTTP_PROXY", proxySetting);
        EXPECT_EQ(Post(), 200);
        EXPECT_EQ(Post(), 200);
    }
    EXPECT_EQ(server_->Connections(), 3u);
    {
        VornTest::ScopedEnv env("VORN_DEFAULT_HTTP_PROXY", proxySetting + ";example.invalid");
        EXPECT_EQ(Post(), 200);
    }
    EXPECT_EQ(server_->Connections(), 4u);
    EXPECT_EQ(proxy.Targets().size(), 2u);
    EXPECT_EQ(server_->RequestCount("/k"), 8u);
}

// A server whose idle time-out is shorter than ours closes the kept connection; the next
// request notices (or retries once on a fresh connection) and is answered as usual.
TEST_F(KeptConnectionTest, AServerThatClosesIdleConnectionsIsStillAnswered)
{
    auto options = VornTestbed::ServerOptions::Tls(files_);
    options.closeIdleConnections = true;
    VornTestbed::LocalHttpsServer closing(options);
    ASSERT_TRUE(closing.Start());
    closing.Respond("/k", HttpResponse::Text(200, "k"));
    HostPlatform::LogCapture logs;

    for (int i = 0; i < 4; ++i) {
        const Outcome outcome = TransportFixture::Post(Request({}), closing.BaseUrl() + "/k");
        EXPECT_EQ(outcome.status, 200) << i;
        EXPECT_EQ(outcome.body, "k");
    }
    EXPECT_EQ(closing.Connections(), 4u);
    EXPECT_EQ(logs.CountContaining("Failed to access the server"), 0u);
}

TEST(TrustSharesTest, KeepsEightContextsButNeverDropsOneInUse)
{
    TrustShares shares;
    CURLSH *held = shares.Hold("held");
    ASSERT_NE(held, nullptr);
    for (int i = 0; i < 12; ++i) {
        const std::string context = "idle" + std::to_string(i);
        ASSERT_NE(shares.Hold(context), nullptr);
        shares.Release(context);
    }
    EXPECT_EQ(shares.Size(), TrustShares::MAX_CONTEXTS);
    // A release too many, or of a context never held, must not free a held context for dropping.
    shares.Release("idle11");
    shares.Release("never-held");
    EXPECT_EQ(shares.Hold("held"), held);
    EXPECT_NE(shares.Hold("idle11"), nullptr);
}

// Against an HTTP/2 server (nghttpd, which echoes what is posted), requests of one trust context
// that run at once are streams of one connection rather than a connection each.
class MultiplexedConnectionTest : public VornTest::TransportFixture {
protected:
    void SetUp() override
    {
        TransportFixture::SetUp();
        uint16_t port = 0;
        ASSERT_TRUE(VornTestbed::ListenOnLoopback(port).Valid());
        const std::string log = dir_.Path("nghttpd.log");
        ASSERT_TRUE(http2Server_.Start({"nghttpd", "--address=127.0.0.1", "--echo-upload", std::to_string(port),
                                           files_.keyFile, files_.certFile},
            log))
            << VornTest::ReadFile(log);
        // Listening is the condition; a server that ended ends the wait at once.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!VornTestbed::ConnectToLoopback(port).Valid()) {
            ASSERT_TRUE(http2Server_.Running()) << "nghttpd ended: " << VornTest::ReadFile(log);
            ASSERT_LT(std::chrono::steady_clock::now(), deadline) << VornTest::ReadFile(log);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        url_ = "https://127.0.0.1:" + std::to_string(port) + "/query";
    }

    VornTestbed::BackgroundProcess http2Server_;
    std::string url_;
};

TEST_F(MultiplexedConnectionTest, ConcurrentRequestsOfOneContextShareTheConnection)
{
    const uint64_t openedBefore = VornMetrics::Get(VornMetrics::Counter::CONNECTIONS_OPENED);
    const auto request = Request({});
    const Outcome first = Post(request, url_);
    ASSERT_EQ(first.status, 200) << first.heads;
    EXPECT_EQ(first.body, R"({"services":["alpha","beta"]})");

    constexpr int concurrent = 8;
    std::vector<long> statuses(concurrent, 0);
    std::vector<std::thread> clients;
    for (int i = 0; i < concurrent; ++i) {
        clients.emplace_back([&, i] { statuses[i] = Post(request, url_).status; });
    }
    for (std::thread &client : clients) {
        client.join();
    }
    EXPECT_EQ(statuses, std::vector<long>(concurrent, 200));
    EXPECT_EQ(VornMetrics::Get(VornMetrics::Counter::CONNECTIONS_OPENED), openedBefore + 1);
}
} // namespace
