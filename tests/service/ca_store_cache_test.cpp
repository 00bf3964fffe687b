#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ca_store_cache.h"
#include "hilog_host.h"
#include "transport_fixture.h"
#include "vorn_http_logic.h"

namespace {
using OHOS::Vorn::CaStoreCache;
using VornTestbed::HttpResponse;

class CaStoreCacheTest : public VornTest::TransportFixture {
protected:
    void SetUp() override
    {
        TransportFixture::SetUp();
        server_->Respond("/x", HttpResponse::Text(200, "x"));
    }

    long Post(const std::string &caFile) const
    {
        auto info = OHOS::Vorn::VornInitConfigParser::VornRequestInfo();
        info.caFile = caFile;
        return TransportFixture::Post(info, Url("/x")).status;
    }

    static uint64_t Loads() { return CaStoreCache::GetInstance().Loads(); }
};

// Regular files the cache cannot use are left to libcurl, which reports them itself.
TEST_F(CaStoreCacheTest, UnusableCaFilesAreLeftToLibcurl)
{
    const std::vector<std::string> caFiles = {"", dir_.Path("missing.pem"), dir_.WriteFile("junk.pem", "no PEM here")};
    const size_t sizeBefore = CaStoreCache::GetInstance().Size();
    const uint64_t loadsBefore = Loads();
    HostPlatform::LogCapture logs;
    for (const std::string &caFile : caFiles) {
        EXPECT_EQ(Post(caFile), -1) << caFile;
    }
    EXPECT_EQ(logs.Count("Failed to access the server, code = " + std::to_string(CURLE_SSL_CACERT_BADFILE)), 3u);
    EXPECT_EQ(CaStoreCache::GetInstance().Size(), sizeBefore);
    EXPECT_EQ(Loads(), loadsBefore);
    EXPECT_EQ(server_->RequestCount(), 0u);
}

TEST_F(CaStoreCacheTest, KeepsEightStoresAndDropsTheLeastRecentlyUsed)
{
    auto ca = VornTestbed::CertificateAuthority::Create();
    ASSERT_TRUE(ca.has_value());
    std::vector<std::string> paths;
    for (int i = 0; i < 9; ++i) {
        paths.push_back(dir_.Path("ca" + std::to_string(i) + ".pem"));
        ASSERT_TRUE(ca->WriteCertificate(paths.back()));
    }
    CaStoreCache &cache = CaStoreCache::GetInstance();
    for (int i = 0; i < 8; ++i) {
        ASSERT_NE(cache.Acquire(paths[i]), nullptr);
    }
    ASSERT_NE(cache.Acquire(paths[0]), nullptr); // now ca1 is the least recently used
    const uint64_t before = Loads();

    ASSERT_NE(cache.Acquire(paths[8]), nullptr);
    EXPECT_EQ(cache.Size(), 8u);
    EXPECT_EQ(Loads(), before + 1);
    ASSERT_NE(cache.Acquire(paths[0]), nullptr);
    EXPECT_EQ(Loads(), before + 1);
    ASSERT_NE(cache.Acquire(paths[1]), nullptr);
    EXPECT_EQ(Loads(), before + 2);
}

TEST_F(CaStoreCacheTest, BypassedWhenTheProxySpeaksTls)
{
    // A CA file of its own for this test, so that its first use is a load.
    const std::string caFile = dir_.WriteFile("bypass.pem", VornTest::ReadFile(files_.caFile));
    const uint64_t before = Loads();
    {
        VornTest::ScopedEnv tlsProxy("VORN_DEFAULT_HTTP_PROXY", "https://127.0.0.1:1");
        EXPECT_EQ(Post(caFile), -1);
    }
    {
        VornTest::ScopedEnv tlsProxy("https_proxy", "HTTPS://127.0.0.1:1");
        EXPECT_EQ(Post(caFile), -1);
    }
    EXPECT_EQ(Loads(), before);

    EXPECT_EQ(Post(caFile), 200);
    EXPECT_EQ(Loads(), before + 1);
}
} // namespace
