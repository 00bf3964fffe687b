#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>

#include <curl/curl.h>
#include <gtest/gtest.h>

#include "ffrt.h"
#include "ffrt_host.h"
#include "transport_fixture.h"

namespace {
using namespace std::chrono_literals;
using VornTestbed::HttpResponse;
using Clock = std::chrono::steady_clock;

constexpr size_t DEVICE_LIKE_WORKERS = 4;

// Transfers on the task runtime, with fewer running workers than transfers in flight.
class TransferLoopTimingTest : public VornTest::TransportFixture {
protected:
    static void SetUpTestSuite()
    {
        // Read once, when the runtime starts: nothing in this process has used it before.
        (void)setenv("VORN_FFRT_WORKERS", std::to_string(DEVICE_LIKE_WORKERS).c_str(), 1);
        TransportFixture::SetUpTestSuite();
    }

    void SetUp() override
    {
        TransportFixture::SetUp();
        ASSERT_EQ(HostPlatform::FfrtRunningWorkerLimit(), DEVICE_LIKE_WORKERS);
    }

    void TearDown() override
    {
        server_->Stop();
        EXPECT_TRUE(HostPlatform::FfrtWaitIdle(30s));
    }
};

// A transfer held a worker for its whole length when it blocked in curl_easy_perform: sixteen
// two-second answers on four workers took eight seconds.
TEST_F(TransferLoopTimingTest, TransfersWaitingForAnswersDoNotHoldWorkers)
{
    constexpr size_t TRANSFERS = 16;
    HttpResponse slow = HttpResponse::Text(200, "slow");
    slow.delay = 2s;
    server_->Respond("/slow", slow);
    std::array<std::atomic<long>, TRANSFERS> statuses {};
    const auto start = Clock::now();

    for (auto &status : statuses) {
        ffrt::submit([this, &status] { status = Post(Request({}), Url("/slow")).status; });
    }
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(30s));

    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    EXPECT_GE(elapsed, 1900);
    EXPECT_LT(elapsed, 5000);
    for (const auto &status : statuses) {
        EXPECT_EQ(status.load(), 200);
    }
}
} // namespace
