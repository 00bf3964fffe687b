#include <cerrno>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "connect_proxy.h"
#include "hilog_host.h"
#include "log_lines.h"
#include "response_size_guard.h"
#include "transport_fixture.h"
#include "vorn_http_logic.h"

namespace {
using OHOS::Vorn::HttpLogic;
using VornTestbed::HttpResponse;

class HttpLogicTest : public VornTest::TransportFixture {};

TEST_F(HttpLogicTest, PostsHeadersQueryAndServiceListAndReturnsTheDecodedBody)
{
    HttpResponse zipped = HttpResponse::Text(200, "{\"urls\":[\"a\"]}");
    zipped.gzip = true;
    server_->Respond("/query", zipped);
    Outcome outcome = Post(Request({}), Url("/query"));

    EXPECT_EQ(outcome.status, 200);
    EXPECT_EQ(outcome.body, "{\"urls\":[\"a\"]}");
    ASSERT_EQ(server_->RequestCount(), 1u);
    VornTestbed::HttpRequest seen = server_->Requests().front();
    EXPECT_EQ(seen.method, "POST");
    EXPECT_EQ(seen.path, "/query");
    EXPECT_EQ(seen.query, "appId=42&scope=test");
    EXPECT_EQ(seen.Header("X-Client").value_or(""), "vorn-test");
    EXPECT_EQ(seen.Header("Accept").value_or(""), "application/json");
    EXPECT_EQ(seen.body, "{\"services\":[\"alpha\",\"beta\"]}");
    EXPECT_EQ(seen.Header("Accept-Encoding").value_or(""), "gzip");
}

TEST_F(HttpLogicTest, GnsRequestsKeepTheUrlAndPassRawHeads)
{
    HttpResponse response = HttpResponse::Text(200, "ok");
    response.headerLines = {"Cache-Control: max-age=60", "X-Raw: yes"};
    server_->Respond("/gns", response);
    auto info = Request({});
    info.saType = "gns";
    info.requestBody.clear();

    Outcome outcome = Post(info, Url("/gns"));

    EXPECT_EQ(outcome.status, 200);
    ASSERT_EQ(server_->RequestCount(), 1u);
    EXPECT_EQ(server_->Requests().front().query, "");
    EXPECT_EQ(server_->Requests().front().body, "{\"services\":[]}");
    EXPECT_EQ(outcome.heads.rfind("HTTP/1.1 200", 0), 0u);
    EXPECT_NE(outcome.heads.find("X-Raw: yes\r\n"), std::string::npos);
    EXPECT_EQ(outcome.heads.substr(outcome.heads.size() - 4), "\r\n\r\n");

    // Only the exact type name counts.
    info.saType = "GNS";
    EXPECT_EQ(Post(info, Url("/gns")).status, 200);
    EXPECT_EQ(server_->Requests().back().query, "appId=42&scope=test");
}

TEST_F(HttpLogicTest, SynthesisesHeadsFromCacheControlLinesOfTheFinalResponse)
{
    HttpResponse first = HttpResponse::Redirect(302, "/final");
    first.headerLines.push_back("Cache-Control: max-age=1");
    server_->Respond("/start", first);
    HttpResponse final = HttpResponse::Text(200, "done");
    final.headerLines = {"cache-control: max-age=3600", "Cache-Control: no-cache",
        "X-Cache-Control: public, max-age=60, s-maxage=30", "Content-Type: text/plain"};
    server_->Respond("/final", final);

    Outcome outcome = Post(Request({}), Url("/start"));

    ASSERT_EQ(outcome.status, 200);
    // The redirect's own Cache-Control line is not among them.
    EXPECT_EQ(std::regex_replace(outcome.heads, std::regex("Cache-time: [0-9]{10}\r\n"), "Cache-time: T\r\n"),
        "Rule: appId=42&scope=test\r\nVersion: 1.2.3\r\nService-List: {\"services\":[\"alpha\",\"beta\"]}\r\n"
        "Cache-time: T\r\nCache-status: success\r\nCache-Control: 3600\r\n"
        "Cache-Control: Cache-Control: no-cache\r\nCache-Control: 60, s-maxage=30\r\n\r\n");
}

TEST_F(HttpLogicTest, FollowsOneRedirectButNotTwo)
{
    server_->Respond("/one", HttpResponse::Redirect(302, "/two"));
    server_->Respond("/two", HttpResponse::Redirect(302, "/three"));
    server_->Respond("/three", HttpResponse::Text(200, "end"));

    EXPECT_EQ(Post(Request({}), Url("/two")).status, 200);
    EXPECT_EQ(Post(Request({}), Url("/one")).status, -1);
    EXPECT_EQ(server_->RequestCount("/three"), 1u);
}

TEST_F(HttpLogicTest, RefusesEverythingButHttps)
{
    VornTestbed::LocalHttpsServer plain(VornTestbed::ServerOptions::PlainHttp());
    ASSERT_TRUE(plain.Start());
    plain.Respond("/secret", HttpResponse::Text(200, "plain text secret"));
    server_->Respond("/down", HttpResponse::Redirect(302, plain.BaseUrl() + "/secret"));
    std::string local = dir_.WriteFile("secret.txt", "file secret");

    Outcome downgrade = Post(Request({}), Url("/down"));
    Outcome plainUrl = Post(Request({}), plain.BaseUrl() + "/secret");
    Outcome fileUrl = Post(Request({}), "file://" + local);

    EXPECT_EQ(downgrade.status, -1);
    EXPECT_EQ(plainUrl.status, -1);
    EXPECT_EQ(fileUrl.status, -1);
    EXPECT_EQ(plain.RequestCount(), 0u);
    for (const Outcome &outcome : {downgrade, plainUrl, fileUrl}) {
        EXPECT_EQ(outcome.body.find("secret"), std::string::npos);
    }
}

// Opening a FIFO for reading blocks until a writer comes, on the one thread that runs every
// transfer; such names are refused before anything opens them.
TEST_F(HttpLogicTest, ACaFileThatIsNoRegularFileIsRefusedUnopened)
{
    server_->Respond("/x", HttpResponse::Text(200, "x"));
    const std::string fifo = dir_.Path("ca.fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    HostPlatform::LogCapture logs;

    for (const std::string &caFile : {fifo, dir_.Path("pki"), std::string("/dev/zero")}) {
        auto info = Request({});
        info.caFile = caFile;
        EXPECT_EQ(Post(info, Url("/x")).status, -1) << caFile;
    }
    EXPECT_EQ(VornTest::ServiceLines(logs, LOG_ERROR, "HttpLogic: caFile is not a regular file, refused: <private>"),
        3u);
    // A writer can only open a FIFO that some reader holds open.
    errno = 0;
    EXPECT_EQ(open(fifo.c_str(), O_WRONLY | O_NONBLOCK), -1);
    EXPECT_EQ(errno, ENXIO);
    EXPECT_EQ(server_->Connections(), 0u);
}

TEST_F(HttpLogicTest, PostWithoutInitFails)
{
    HostPlatform::LogCapture logs;
    HttpLogic logic(Request({}), Url("/x"));
    EXPECT_EQ(logic.PostHttpsRequest(), -1);
    EXPECT_TRUE(logs.Contains("HttpLogic::PostHttpsRequest, m_pcurl not init, InitHttpLogic must call first"));
}

TEST_F(HttpLogicTest, TunnelsThroughTheDefaultProxyUnlessExcludedOrBroken)
{
    server_->Respond("/p", HttpResponse::Text(200, "proxied"));
    VornTestbed::ConnectProxy proxy;
    ASSERT_TRUE(proxy.Start());
    const std::string port = std::to_string(server_->Port());
    {
        VornTest::ScopedEnv env("VORN_DEFAULT_HTTP_PROXY", "127.0.0.1:" + std::to_string(proxy.Port()));
        HostPlatform::LogCapture logs;
        EXPECT_EQ(Post(Request({}), Url("/p")).status, 200);
        EXPECT_TRUE(logs.Contains("Set default proxy"));
    }
    ASSERT_EQ(proxy.Targets(), std::vector<std::string> {"127.0.0.1:" + port});
    {
        VornTest::ScopedEnv env("VORN_DEFAULT_HTTP_PROXY",
            "127.0.0.1:" + std::to_string(proxy.Port()) + ";example.invalid,127.0.0.1");
        EXPECT_EQ(Post(Request({}), Url("/p")).status, 200);
    }
    {
        // A setting without a port is no proxy at all: the transfer goes direct.
        VornTest::ScopedEnv env("VORN_DEFAULT_HTTP_PROXY", "no-port-here");
        HostPlatform::LogCapture logs;
        EXPECT_EQ(Post(Request({}), Url("/p")).status, 200);
        EXPECT_EQ(logs.CountContaining("GetHttpProxy fail, status: "), 1u);
    }
    EXPECT_EQ(proxy.Targets().size(), 1u);
    EXPECT_EQ(server_->RequestCount("/p"), 3u);
}

size_t Escaped(const std::string &text)
{
    return OHOS::Vorn::ResponseSizeGuard::EscapedSize(text.data(), text.size());
}

TEST_F(HttpLogicTest, ABodyThatFitsTheLimitExactlyIsTakenWholeAndOneMoreByteStopsTheTransfer)
{
    // Escaping makes these 3001 bytes 10001: quotation marks and backslashes double, the
    // other control characters take six bytes.
    std::string body;
    for (int i = 0; i < 1000; ++i) {
        body += "\"\x01\\";
    }
    body += "x";
    server_->Respond("/escaped", HttpResponse::Text(200, body));
    const auto info = Request({});
    const size_t heads = Escaped(Post(info, Url("/escaped")).heads);
    const size_t whole = heads + Escaped(body);
    ASSERT_EQ(whole, heads + 10001);

    Outcome fits = Post(info, Url("/escaped"), whole);
    EXPECT_EQ(fits.status, 200);
    EXPECT_FALSE(fits.tooLarge);
    EXPECT_EQ(fits.body, body);
    EXPECT_EQ(fits.reached, whole);

    HostPlatform::LogCapture logs;
    Outcome over = Post(info, Url("/escaped"), whole - 1);
    EXPECT_EQ(over.status, -1);
    EXPECT_TRUE(over.tooLarge);
    EXPECT_EQ(over.responseStatus, 200);
    EXPECT_GT(over.reached, whole - 1);
    EXPECT_LE(over.reached, whole);
    EXPECT_LE(heads + Escaped(over.body), whole - 1);
    EXPECT_EQ(body.compare(0, over.body.size(), over.body), 0);
    EXPECT_TRUE(logs.Contains("Failed to access the server, code = 23"));
}

TEST_F(HttpLogicTest, SyntheticHeadsCountFromTheRequestAndRawHeadsAsTheyArrive)
{
    HttpResponse response = HttpResponse::Text(200, "");
    response.headerLines = {"X-Long: " + std::string(3000, 'h')};
    server_->Respond("/heads", response);

    // Synthetic heads leave X-Long out: they fit a limit a little above their own size.
    auto info = Request({});
    const std::string synthetic = Post(info, Url("/heads")).heads;
    Outcome fits = Post(info, Url("/heads"), Escaped(synthetic));
    EXPECT_EQ(fits.status, 200);
    EXPECT_FALSE(fits.tooLarge);
    EXPECT_EQ(fits.heads.size(), synthetic.size());

    // Raw heads carry it, so the same limit stops the transfer while the heads arrive.
    info.saType = "gns";
    Outcome raw = Post(info, Url("/heads"), Escaped(synthetic));
    EXPECT_EQ(raw.status, -1);
    EXPECT_TRUE(raw.tooLarge);
    EXPECT_EQ(raw.responseStatus, 200);
    EXPECT_EQ(raw.heads.find(std::string(3000, 'h')), std::string::npos);
}

TEST_F(HttpLogicTest, AGzipBodyIsBoundedAfterDecoding)
{
    HttpResponse response;
    response.generatedBodySize = 8u << 20;
    response.gzip = true;
    server_->Respond("/bomb", response);

    Outcome bomb = Post(Request({}), Url("/bomb"), 100000);
    EXPECT_EQ(bomb.status, -1);
    EXPECT_TRUE(bomb.tooLarge);
    EXPECT_LE(bomb.body.size(), 100000u);
    // libcurl decodes in pieces of at most 16 KiB, so the transfer stopped at the first one over.
    EXPECT_LT(bomb.reached, 100000u + 16384u + 1u);
}

// The protocol options set, in order, given what each form of setter answers; a bitmask is
// written as its number.
using Calls = std::vector<std::pair<CURLoption, std::string>>;

bool Restrict(CURLcode namesResult, CURLcode bitmaskResult, Calls &calls)
{
    calls.clear();
    return HttpLogic::RestrictToHttps(
        HttpLogic::ProtocolSetters {[&calls, namesResult](CURLoption option, const char *names) {
                                        calls.emplace_back(option, names);
                                        return namesResult;
                                    },
            [&calls, bitmaskResult](CURLoption option, long bitmask) {
                calls.emplace_back(option, std::to_string(bitmask));
                return bitmaskResult;
            }});
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
TEST(ProtocolRestrictionTest, NamesWhereLibcurlKnowsThemElseTheHttpsBitmaskNeverAllProtocols)
{
    const std::string https = std::to_string(CURLPROTO_HTTPS);
    Calls calls;
    EXPECT_TRUE(Restrict(CURLE_OK, CURLE_OK, calls));
    EXPECT_EQ(calls, (Calls {{CURLOPT_PROTOCOLS_STR, "https"}, {CURLOPT_REDIR_PROTOCOLS_STR, "https"}}));

    EXPECT_TRUE(Restrict(CURLE_UNKNOWN_OPTION, CURLE_OK, calls));
    EXPECT_EQ(calls,
        (Calls {{CURLOPT_PROTOCOLS_STR, "https"}, {CURLOPT_PROTOCOLS, https}, {CURLOPT_REDIR_PROTOCOLS_STR, "https"},
            {CURLOPT_REDIR_PROTOCOLS, https}}));

    // When neither form applies the transfer is refused, without trying the redirect restriction.
    HostPlatform::LogCapture logs;
    EXPECT_FALSE(Restrict(CURLE_UNKNOWN_OPTION, CURLE_BAD_FUNCTION_ARGUMENT, calls));
    EXPECT_EQ(calls, (Calls {{CURLOPT_PROTOCOLS_STR, "https"}, {CURLOPT_PROTOCOLS, https}}));
    EXPECT_TRUE(logs.Contains("HttpLogic cannot restrict the transfer to HTTPS, code = 43"));
}
#pragma GCC diagnostic pop
} // namespace
