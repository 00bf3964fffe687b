#include <curl/curl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "certificate_authority.h"
#include "connect_proxy.h"
#include "local_https_server.h"
#include "loopback_socket.h"
#include "temp_dir.h"

namespace VornTestbed {
namespace {
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// The service's own TLS settings, so the server is tested against what it must satisfy.
constexpr const char* kServiceCiphers = "AESGCM:!RSA:!DHE:!MEDIUM:!aNULL:!eNULL:!EXPORT:!DES:!3DES:!MD5:!EXP:!PSK:"
                                        "!RC4:!SRP:!aECDH:!ADH:!CAMELLIA:!LOW";

struct CurlDeleter {
    void operator()(CURL* handle) const
    {
        curl_easy_cleanup(handle);
    }
    void operator()(curl_slist* list) const
    {
        curl_slist_free_all(list);
    }
};

struct ClientRequest {
    std::string url;
    std::string caFile;
    std::optional<std::string> postBody;
    std::vector<std::string> headers;
    std::string proxy;
};

struct ClientResult {
    CURLcode code = CURLE_OK;
    long status = 0;
    std::string body;
    std::vector<std::string> headerLines;
};

size_t AppendBody(char* data, size_t size, size_t count, void* target)
{
    static_cast<std::string*>(target)->append(data, size * count);
    return size * count;
}

size_t AppendHeaderLine(char* data, size_t size, size_t count, void* target)
{
    std::string line(data, size * count);
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.pop_back();
    }
    static_cast<std::vector<std::string>*>(target)->push_back(line);
    return size * count;
}

ClientResult Perform(const ClientRequest& request)
{
    ClientResult result;
    std::unique_ptr<CURL, CurlDeleter> curl(curl_easy_init());
    std::unique_ptr<curl_slist, CurlDeleter> headers;
    for (const auto& header : request.headers) {
        headers.reset(curl_slist_append(headers.release(), header.c_str()));
    }
    CURL* handle = curl.get();
    curl_easy_setopt(handle, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(handle, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_2);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(handle, CURLOPT_CAINFO, request.caFile.c_str());
    curl_easy_setopt(handle, CURLOPT_SSL_CIPHER_LIST, kServiceCiphers);
    curl_easy_setopt(handle, CURLOPT_PROXY, request.proxy.c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPPROXYTUNNEL, request.proxy.empty() ? 0L : 1L);
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, 20000L);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, AppendBody);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &result.body);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, AppendHeaderLine);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &result.headerLines);
    if (request.postBody) {
        curl_easy_setopt(handle, CURLOPT_POSTFIELDS, request.postBody->c_str());
        curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE, static_cast<long>(request.postBody->size()));
    }
    result.code = curl_easy_perform(handle);
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &result.status);
    return result;
}

class TestbedTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
            ::unsetenv(name);
        }
        curl_global_init(CURL_GLOBAL_DEFAULT);
    }

    static void TearDownTestSuite()
    {
        curl_global_cleanup();
    }

    void SetUp() override
    {
        auto made = MakeCertificateFiles(dir_.Path("pki"));
        ASSERT_TRUE(made.has_value());
        files_ = *made;
    }

    std::unique_ptr<LocalHttpsServer> StartServer(const ServerOptions& options)
    {
        auto server = std::make_unique<LocalHttpsServer>(options);
        EXPECT_TRUE(server->Start());
        return server;
    }

    ClientRequest To(const std::string& url) const
    {
        ClientRequest request;
        request.url = url;
        request.caFile = files_.caFile;
        return request;
    }

    TempDir dir_;
    CertificateFiles files_;
};

TEST_F(TestbedTest, VerifiedPostIsAnsweredAndRecorded)
{
    auto server = StartServer(ServerOptions::Tls(files_));
    server->Handle("/echo", [](const HttpRequest& request) {
        HttpResponse response = HttpResponse::Text(201, "got " + request.body);
        response.headerLines = {"Cache-Control: no-cache", "Cache-Control: no-store"};
        return response;
    });
    ClientRequest request = To(server->BaseUrl() + "/echo?a=1&b=2");
    request.postBody = "hello";
    request.headers = {"X-First: one", "X-Second:  two "};

    ClientResult result = Perform(request);
    ASSERT_EQ(result.code, CURLE_OK) << curl_easy_strerror(result.code);
    EXPECT_EQ(result.status, 201);
    EXPECT_EQ(result.body, "got hello");
    auto first = std::find(result.headerLines.begin(), result.headerLines.end(), "Cache-Control: no-cache");
    ASSERT_NE(first, result.headerLines.end());
    EXPECT_EQ(*(first + 1), "Cache-Control: no-store");

    auto requests = server->Requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].path, "/echo");
    EXPECT_EQ(requests[0].query, "a=1&b=2");
    EXPECT_EQ(requests[0].body, "hello");
    EXPECT_EQ(requests[0].Header("x-second").value_or(""), "two");
    EXPECT_NE(requests[0].tlsVersion.find("TLSv1."), std::string::npos);
    auto firstHeader = std::find_if(requests[0].headers.begin(), requests[0].headers.end(),
        [](const HttpHeader& header) { return header.name == "X-First"; });
    ASSERT_NE(firstHeader, requests[0].headers.end());
    EXPECT_EQ((firstHeader + 1)->name, "X-Second");

    ClientResult unknown = Perform(To(server->LocalhostUrl() + "/nowhere"));
    EXPECT_EQ(unknown.code, CURLE_OK) << curl_easy_strerror(unknown.code);
    EXPECT_EQ(unknown.status, 404);
    EXPECT_EQ(server->RequestCount("/echo"), 1U);
    EXPECT_EQ(server->RequestCount("/nowhere"), 1U);
    EXPECT_TRUE(server->WaitForRequests(2, 1s));
    EXPECT_FALSE(server->WaitForRequests(3, 50ms));
}

TEST_F(TestbedTest, CertificatesTheClientMustRefuse)
{
    auto otherCa = MakeCertificateFiles(dir_.Path("other"));
    auto sameCa = CertificateAuthority::Create();
    ASSERT_TRUE(otherCa && sameCa);
    ASSERT_TRUE(sameCa->WriteCertificate(dir_.Path("ca.pem")));
    ASSERT_TRUE(sameCa->IssueServerCertificate(CertificateOptions::Expired(), dir_.Path("old.pem"),
        dir_.Path("old.key")));
    ASSERT_TRUE(sameCa->IssueServerCertificate(CertificateOptions::ForHost("elsewhere.test"),
        dir_.Path("host.pem"), dir_.Path("host.key")));
    struct Case {
        CertificateFiles served;
        std::string trustedCa;
    };
    const std::vector<Case> cases = {{*otherCa, files_.caFile},
        {{"", dir_.Path("old.pem"), dir_.Path("old.key")}, dir_.Path("ca.pem")},
        {{"", dir_.Path("host.pem"), dir_.Path("host.key")}, dir_.Path("ca.pem")}};
    for (const auto& refused : cases) {
        auto server = StartServer(ServerOptions::Tls(refused.served));
        server->Respond("/", HttpResponse::Text(200, "secret"));
        ClientRequest request = To(server->BaseUrl() + "/");
        request.caFile = refused.trustedCa;
        EXPECT_EQ(Perform(request).code, CURLE_PEER_FAILED_VERIFICATION) << refused.served.certFile;
        EXPECT_EQ(server->RequestCount(), 0U);
    }
}

TEST_F(TestbedTest, StalledAnswerHoldsUpNeitherOthersNorStop)
{
    auto server = StartServer(ServerOptions::Tls(files_));
    HttpResponse stalled;
    stalled.stall = Stall::BeforeHead;
    server->Respond("/stall", stalled);
    server->Respond("/quick", HttpResponse::Text(200, "quick"));
    auto pending = std::async(std::launch::async, [request = To(server->BaseUrl() + "/stall")] {
        return Perform(request);
    });
    ASSERT_TRUE(server->WaitForRequests(1, 5s));

    EXPECT_EQ(Perform(To(server->BaseUrl() + "/quick")).body, "quick");
    auto begin = Clock::now();
    server->Stop();
    EXPECT_LT(Clock::now() - begin, 2s);
    EXPECT_NE(pending.get().code, CURLE_OK);
}

TEST_F(TestbedTest, ConnectProxyTunnelsOnlyToLoopback)
{
    auto server = StartServer(ServerOptions::Tls(files_));
    server->Respond("/via", HttpResponse::Text(200, "tunnelled"));
    ConnectProxy proxy;
    ASSERT_TRUE(proxy.Start());
    ClientRequest request = To(server->BaseUrl() + "/via");
    request.proxy = proxy.Url();

    ClientResult result = Perform(request);
    ASSERT_EQ(result.code, CURLE_OK) << curl_easy_strerror(result.code);
    EXPECT_EQ(result.body, "tunnelled");

    request.url = "https://elsewhere.test:443/";
    EXPECT_NE(Perform(request).code, CURLE_OK);
    std::vector<std::string> expected = {"127.0.0.1:" + std::to_string(server->Port()), "elsewhere.test:443"};
    EXPECT_EQ(proxy.Targets(), expected);
}

TEST_F(TestbedTest, PlainHttpModeServesWithoutTls)
{
    auto server = StartServer(ServerOptions::PlainHttp());
    server->Respond("/plain", HttpResponse::Text(200, "clear"));
    ASSERT_EQ(server->BaseUrl().rfind("http://", 0), 0U);

    ClientResult result = Perform(To(server->BaseUrl() + "/plain"));
    EXPECT_EQ(result.body, "clear");
    EXPECT_TRUE(server->Requests().at(0).tlsVersion.empty());
    std::string httpsUrl = "https://127.0.0.1:" + std::to_string(server->Port()) + "/plain";
    EXPECT_EQ(Perform(To(httpsUrl)).code, CURLE_SSL_CONNECT_ERROR);
}

TEST_F(TestbedTest, ForcedOldProtocolIsAllTheServerOffers)
{
    ServerOptions options = ServerOptions::Tls(files_);
    options.maxProtocol = TLS1_1_VERSION;
    auto server = StartServer(options);
    EXPECT_EQ(Perform(To(server->BaseUrl() + "/")).code, CURLE_SSL_CONNECT_ERROR);

    SslCtxPtr context(SSL_CTX_new(TLS_client_method()));
    SSL_CTX_set_security_level(context.get(), 0);
    SSL_CTX_set_min_proto_version(context.get(), TLS1_VERSION);
    SSL_CTX_set_max_proto_version(context.get(), TLS1_1_VERSION);
    UniqueFd connection = ConnectToLoopback(server->Port());
    SslPtr ssl(SSL_new(context.get()));
    SSL_set_fd(ssl.get(), connection.Get());
    ASSERT_EQ(SSL_connect(ssl.get()), 1);
    EXPECT_EQ(SSL_version(ssl.get()), TLS1_1_VERSION);
    // The server counts curl's refusal on its own thread, maybe after curl has returned.
    for (int i = 0; i < 100 && server->FailedHandshakes() == 0; ++i) {
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(server->FailedHandshakes(), 1U);
}
} // namespace
} // namespace VornTestbed
