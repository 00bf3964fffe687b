#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <curl/curl.h>
#include <gtest/gtest.h>

#include "ca_store_cache.h"
#include "hilog_host.h"
#include "log_lines.h"
#include "transfer_loop.h"
#include "transport_fixture.h"
#include "vorn_http_logic.h"

namespace {
using OHOS::Vorn::CaStoreCache;
using OHOS::Vorn::TransferLoop;
using VornTestbed::HttpResponse;

class TransferLoopTest : public VornTest::TransportFixture {};

// The fixture's CA file is new to the cache, so the transfers race for its first load too.
TEST_F(TransferLoopTest, ConcurrentTransfersEachGetTheirOwnResponseThroughOneCaStore)
{
    const uint64_t loadsBefore = CaStoreCache::GetInstance().Loads();
    constexpr int TRANSFERS = 32;
    for (int i = 0; i < TRANSFERS; ++i) {
        // Bodies of different sizes, so that one transfer's bytes in another's body would show.
        server_->Respond("/t" + std::to_string(i), HttpResponse::Text(200, std::string(100 + i * 997, 'a' + i % 26)));
    }
    std::vector<Outcome> outcomes(TRANSFERS);
    std::vector<std::thread> threads;
    for (int i = 0; i < TRANSFERS; ++i) {
        threads.emplace_back([this, i, &outcomes] { outcomes[i] = Post(Request({}), Url("/t" + std::to_string(i))); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }

    for (int i = 0; i < TRANSFERS; ++i) {
        EXPECT_EQ(outcomes[i].status, 200) << i;
        EXPECT_EQ(outcomes[i].body, std::string(100 + i * 997, 'a' + i % 26)) << i;
    }
    EXPECT_EQ(server_->RequestCount(), static_cast<size_t>(TRANSFERS));
    EXPECT_EQ(CaStoreCache::GetInstance().Loads(), loadsBefore + 1);
}

TEST_F(TransferLoopTest, AHandleTheLoopCannotTakeIsReportedNotRun)
{
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), &curl_easy_cleanup);
    std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> elsewhere(curl_multi_init(), &curl_multi_cleanup);
    ASSERT_NE(curl, nullptr);
    ASSERT_NE(elsewhere, nullptr);
    // A handle can be in one multi handle only.
    ASSERT_EQ(curl_multi_add_handle(elsewhere.get(), curl.get()), CURLM_OK);
    HostPlatform::LogCapture logs;

    EXPECT_EQ(TransferLoop::Perform(curl.get()).get(), TransferLoop::NOT_RUN);
    EXPECT_EQ(TransferLoop::Perform(nullptr).get(), TransferLoop::NOT_RUN);

    EXPECT_EQ(VornTest::ServiceLines(logs, LOG_ERROR,
                  "TransferLoop: curl_multi_add_handle failed, code = " + std::to_string(CURLM_ADDED_ALREADY)),
        1u);
    EXPECT_EQ(VornTest::ServiceLines(logs, LOG_ERROR,
                  "TransferLoop: curl_multi_add_handle failed, code = " + std::to_string(CURLM_BAD_EASY_HANDLE)),
        1u);
    ASSERT_EQ(curl_multi_remove_handle(elsewhere.get(), curl.get()), CURLM_OK);
    // The loop goes on serving.
    server_->Respond("/after", HttpResponse::Text(200, "after"));
    EXPECT_EQ(Post(Request({}), Url("/after")).body, "after");
}
} // namespace
