#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include <curl/curl.h>
#include <gtest/gtest.h>

#include "ffrt.h"
#include "ffrt_host.h"
#include "hilog_host.h"
#include "https_fixture.h"
#include "log_lines.h"
#include "vorn_http_logic.h"

namespace {
using namespace std::chrono_literals;
using OHOS::Vorn::HttpLogic;
using VornTestbed::HttpResponse;
using Clock = std::chrono::steady_clock;

constexpr size_t DEVICE_LIKE_WORKERS = 4;

long long MillisSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// Transfers on the task runtime, with fewer running workers than transfers in flight.
class TransferLoopTimingTest : public VornTest::HttpsFixture {
protected:
    static void SetUpTestSuite()
    {
        // Read once, when the runtime starts: nothing in this process has used it before.
        (void)setenv("VORN_FFRT_WORKERS", std::to_string(DEVICE_LIKE_WORKERS).c_str(), 1);
        ASSERT_TRUE(HttpLogic::GlobalInit());
    }

    void SetUp() override
    {
        HttpsFixture::SetUp();
        ASSERT_EQ(HostPlatform::FfrtRunningWorkerLimit(), DEVICE_LIKE_WORKERS);
    }

    void TearDown() override
    {
        server_->Stop();
        EXPECT_TRUE(HostPlatform::FfrtWaitIdle(30s));
    }

    static long Post(const OHOS::Vorn::VornInitConfigParser::VornRequestInfo &info, const std::string &url)
    {
        HttpLogic logic(info, url);
        return logic.InitHttpLogic() == 0 ? logic.PostHttpsRequest() : -2;
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
        ffrt::submit([this, &status] { status = Post(Request({}), Url("/slow")); });
    }
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(30s));

    const long long elapsed = MillisSince(start);
    EXPECT_GE(elapsed, 1900);
    EXPECT_LT(elapsed, 5000);
    for (const auto &status : statuses) {
        EXPECT_EQ(status.load(), 200);
    }
}

TEST_F(TransferLoopTimingTest, AStalledServerEndsAtTheTransferLimitWhileOthersAreServed)
{
    HttpResponse stalled;
    stalled.stall = VornTestbed::Stall::BeforeHead;
    server_->Respond("/stall", stalled);
    server_->Respond("/ok", HttpResponse::Text(200, "ok"));
    HostPlatform::LogCapture logs;
    std::atomic<long> stalledStatus {0};
    std::atomic<long long> stalledMs {0};
    const auto start = Clock::now();

    ffrt::submit([&] {
        stalledStatus = Post(Request({}), Url("/stall"));
        stalledMs = MillisSince(start);
    });
    ASSERT_TRUE(server_->WaitForRequests(1, 5s));
    for (int i = 0; i < 3; ++i) {
        const auto okStart = Clock::now();
        EXPECT_EQ(Post(Request({}), Url("/ok")), 200);
        EXPECT_LT(MillisSince(okStart), 2000);
    }
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(30s));

    EXPECT_EQ(stalledStatus.load(), -1);
    EXPECT_GE(stalledMs.load(), 9900);
    EXPECT_LT(stalledMs.load(), 14000);
    EXPECT_EQ(VornTest::ServiceLines(logs, LOG_INFO,
        "Failed to access the server, code = " + std::to_string(CURLE_OPERATION_TIMEDOUT)), 1u);
}
} // namespace
