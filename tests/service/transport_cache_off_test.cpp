#include <cstdlib>

#include <gtest/gtest.h>

#include "ca_store_cache.h"
#include "transport_fixture.h"
#include "vorn_http_logic.h"
#include "vorn_metrics.h"

namespace {
using OHOS::Vorn::CaStoreCache;
using OHOS::Vorn::VornMetrics;
using VornTestbed::HttpResponse;

// The transport reads its switch once per process, so this file switches it off before any
// test runs.
const bool SWITCHED_OFF = setenv("VORN_TRANSPORT_CACHE", "0", 1) == 0;

class TransportCacheOffTest : public VornTest::TransportFixture {
protected:
    static void SetUpTestSuite()
    {
        ASSERT_TRUE(SWITCHED_OFF);
        TransportFixture::SetUpTestSuite();
    }
};

TEST_F(TransportCacheOffTest, EveryRequestOpensItsOwnConnectionAndReadsTheCaFile)
{
    ASSERT_FALSE(CaStoreCache::IsEnabled());
    server_->Respond("/x", HttpResponse::Text(200, "x"));
    const uint64_t caLoadsBefore = VornMetrics::Get(VornMetrics::Counter::CA_LOADS);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Post(Request({}), Url("/x")).status, 200);
    }
    EXPECT_EQ(server_->Connections(), 3u);
    EXPECT_EQ(CaStoreCache::GetInstance().Loads(), 0u);
    EXPECT_EQ(VornMetrics::Get(VornMetrics::Counter::CA_LOADS), caLoadsBefore + 3);
    EXPECT_EQ(VornMetrics::Get(VornMetrics::Counter::CONNECTIONS_REUSED), 0u);
}
} // namespace
