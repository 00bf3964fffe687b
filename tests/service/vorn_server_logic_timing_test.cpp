#include <chrono>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "engine_fixture.h"
#include "ffrt_host.h"
#include "hilog_host.h"
#include "time_utils.h"
#include "vorn_server_logic.h"

// Real-clock behaviour of the request engine: the 9000 ms budget (the one-second race, a late
// first URL and the 10 s job wait are timed under load in engine_load_timing_test).
// Bounds are loose for a busy build machine.
namespace {
using namespace std::chrono_literals;
using OHOS::Vorn::VornServerLogic;
using VornTestbed::HttpResponse;

uint64_t NowMs()
{
    return static_cast<uint64_t>(OHOS::Vorn::TimeUtils::GetTimeMills());
}

class ServerLogicTimingTest : public VornTest::EngineFixture {
protected:
    ServerLogicTimingTest() : EngineFixture(20s) {}

    void SetUp() override
    {
        EngineFixture::SetUp();
        HttpResponse stall = HttpResponse::Text(200, "late");
        stall.stall = VornTestbed::Stall::BeforeHead;
        for (const char *path : {"/stall1", "/stall2", "/stall3"}) {
            server_->Respond(path, stall);
        }
        server_->Respond("/ok", HttpResponse::Text(200, "fast"));
    }
};

TEST_F(ServerLogicTimingTest, BudgetStopsTheWalkBeforeTheLastUrl)
{
    // 7.5 s already spent: the first two URLs start (at 7.5 s and 8.5 s), the third would at 9.5 s.
    const uint64_t requestStart = NowMs() - 7500;
    auto info = Request({Url("/stall1"), Url("/stall2"), Url("/stall3")});

    EXPECT_EQ(VornServerLogic::SubmitRequestTask(info, callback_, requestStart), -1);

    EXPECT_EQ(Lines(LOG_INFO, "SubmitRequestTask:: next"), 2u);
    EXPECT_EQ(Lines(LOG_WARN, "SubmitRequestTask:: time to return:" + std::to_string(requestStart)), 1u);
    EXPECT_TRUE(server_->WaitForRequests(2, 5s));
    EXPECT_EQ(server_->RequestCount("/stall3"), 0u);
    server_->Stop();
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(20s));
    EXPECT_EQ(recorder_->Count(), 0u);
}

TEST_F(ServerLogicTimingTest, ExpiredOrFutureStartTimeReturnsBeforeAnyAttempt)
{
    auto info = Request({Url("/ok")});
    // A start time ahead of the clock (stepped back since) counts as expired as well.
    for (uint64_t requestStart : {NowMs() - 9500, NowMs() + 60000}) {
        EXPECT_EQ(VornServerLogic::SubmitRequestTask(info, callback_, requestStart), -1);
        EXPECT_EQ(Lines(LOG_WARN, "SubmitRequestTask:: time to return:" + std::to_string(requestStart)), 1u);
    }
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(5s));
    EXPECT_EQ(server_->RequestCount(), 0u);
    EXPECT_EQ(recorder_->Count(), 0u);
}
} // namespace
