#include <curl/curl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "certificate_authority.h"
#include "connect_proxy.h"
#include "local_https_server.h"
#include "loopback_socket.h"
#include "temp_dir.h"

namespace VornTestbed {
namespace {

// The service's own TLS settings, so the server is tested against what it must satisfy.
constexpr const char *kServiceCiphers = "AESGCM:!RSA:!DHE:!MEDIUM:!aNULL:!eNULL:!EXPORT:!DES:!3DES:!MD5:!EXP:!PSK:"
                                        "!RC4:!SRP:!aECDH:!ADH:!CAMELLIA:!LOW";

struct CurlDeleter {
    void operator()(CURL *handle) const { curl_easy_cleanup(handle); }
};

struct ClientRequest {
    std::string url;
    std::string caFile;
    std::string proxy;
};

size_t AppendBody(char *data, size_t size, size_t count, void *target)
{
    static_cast<std::string *>(target)->append(data, size * count);
    return size * count;
}

// A client with the service's TLS settings; the code, and the body when it succeeded.
std::pair<CURLcode, std::string> Perform(const ClientRequest &request)
{
    std::string body;
    std::unique_ptr<CURL, CurlDeleter> curl(curl_easy_init());
    CURL *handle = curl.get();
    curl_easy_setopt(handle, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(handle, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_2);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(handle, CURLOPT_CAINFO, request.caFile.c_str());
    curl_easy_setopt(handle, CURLOPT_SSL_CIPHER_LIST, kServiceCiphers);
    curl_easy_setopt(handle, CURLOPT_PROXY, request.proxy.c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPPROXYTUNNEL, request.proxy.empty() ? 0L : 1L);
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, 20000L);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, AppendBody);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
    return {curl_easy_perform(handle), body};
}

class TestbedTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        for (const char *name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
            ::unsetenv(name);
        }
        curl_global_init(CURL_GLOBAL_DEFAULT);
    }

    static void TearDownTestSuite() { curl_global_cleanup(); }

    void SetUp() override
    {
        auto made = MakeCertificateFiles(dir_.Path("pki"));
        ASSERT_TRUE(made.has_value());
        files_ = *made;
    }

    std::unique_ptr<LocalHttpsServer> StartServer(const ServerOptions &options)
    {
        auto server = std::make_unique<LocalHttpsServer>(options);
        EXPECT_TRUE(server->Start());
        return server;
    }

    ClientRequest To(const std::string &url) const { return {url, files_.caFile, ""}; }

    TempDir dir_;
    CertificateFiles files_;
};

// Tunnelling to the local server is what the service's proxy tests do; anywhere else is refused.
TEST_F(TestbedTest, ConnectProxyTunnelsOnlyToLoopback)
{
    ConnectProxy proxy;
    ASSERT_TRUE(proxy.Start());
    ClientRequest request = To("https://elsewhere.test:443/");
    request.proxy = proxy.Url();
    EXPECT_NE(Perform(request).first, CURLE_OK);
    EXPECT_EQ(proxy.Targets(), std::vector<std::string> {"elsewhere.test:443"});
}

TEST_F(TestbedTest, PlainHttpModeServesWithoutTls)
{
    auto server = StartServer(ServerOptions::PlainHttp());
    server->Respond("/plain", HttpResponse::Text(200, "clear"));
    ASSERT_EQ(server->BaseUrl().rfind("http://", 0), 0U);

    EXPECT_EQ(Perform(To(server->BaseUrl() + "/plain")).second, "clear");
    std::string httpsUrl = "https://127.0.0.1:" + std::to_string(server->Port()) + "/plain";
    EXPECT_EQ(Perform(To(httpsUrl)).first, CURLE_SSL_CONNECT_ERROR);
}

// That the service refuses such a server is its own test; here, that the server really speaks it.
TEST_F(TestbedTest, ForcedOldProtocolIsAllTheServerOffers)
{
    ServerOptions options = ServerOptions::Tls(files_);
    options.maxProtocol = TLS1_1_VERSION;
    auto server = StartServer(options);

    SslCtxPtr context(SSL_CTX_new(TLS_client_method()));
    SSL_CTX_set_security_level(context.get(), 0);
    SSL_CTX_set_min_proto_version(context.get(), TLS1_VERSION);
    SSL_CTX_set_max_proto_version(context.get(), TLS1_1_VERSION);
    UniqueFd connection = ConnectToLoopback(server->Port());
    SslPtr ssl(SSL_new(context.get()));
    SSL_set_fd(ssl.get(), connection.Get());
    ASSERT_EQ(SSL_connect(ssl.get()), 1);
    EXPECT_EQ(SSL_version(ssl.get()), TLS1_1_VERSION);
}
} // namespace
} // namespace VornTestbed
