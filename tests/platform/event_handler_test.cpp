#include <chrono>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "event_handler.h"
#include "event_runner.h"
#include "eventhandler_host.h"
#include "task_gate.h"

namespace {
using namespace std::chrono_literals;
using OHOS::AppExecFwk::EventHandler;
using OHOS::AppExecFwk::EventQueue;
using OHOS::AppExecFwk::EventRunner;
using OHOS::AppExecFwk::InnerEvent;
using Priority = EventQueue::Priority;
using HostPlatform::EventRunnersWaitIdle;

constexpr auto SETTLE_TIMEOUT = 30s;
constexpr int64_t ONE_HOUR_MS = 3600 * 1000;

bool Post(EventHandler &handler, const std::function<void()> &task, const std::string &name = "", int64_t delayMs = 0,
    Priority priority = Priority::LOW)
{
    return handler.SendEvent(InnerEvent::Get(task, name), delayMs, priority);
}

class EventHandlerTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT)); }

    // Holds the runner inside one task until the gate opens, so that everything sent meanwhile
    // queues up.
    void HoldRunner(VornTest::TaskGate &gate)
    {
        Post(*handler_, gate.Blocker());
        ASSERT_TRUE(gate.WaitStarted(SETTLE_TIMEOUT));
    }

    std::function<void()> Record(const std::string &label)
    {
        return [this, label] { order_.push_back(label); };
    }

    std::shared_ptr<EventRunner> runner_ = EventRunner::Create(true);
    std::shared_ptr<EventHandler> handler_ = std::make_shared<EventHandler>(runner_);
    std::vector<std::string> order_; // written on the runner thread only
};

TEST_F(EventHandlerTest, DueEventsRunByPriorityThenInSendOrder)
{
    VornTest::TaskGate gate;
    HoldRunner(gate);
    Post(*handler_, Record("low-1"), "", 0, Priority::LOW);
    Post(*handler_, Record("idle"), "", 0, Priority::IDLE);
    Post(*handler_, Record("high"), "", 0, Priority::HIGH);
    Post(*handler_, Record("low-2"), "", 0, Priority::LOW);
    Post(*handler_, Record("vip"), "", 0, Priority::VIP);
    Post(*handler_, Record("immediate"), "", 0, Priority::IMMEDIATE);
    gate.Open();
    ASSERT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(order_, (std::vector<std::string> {"vip", "immediate", "high", "low-1", "low-2", "idle"}));
}

TEST_F(EventHandlerTest, DelayedEventsRunInDueOrderNeverEarlyWhateverTheirPriority)
{
    using Clock = InnerEvent::Clock;
    Post(*handler_, Record("vip-in-an-hour"), "later", ONE_HOUR_MS, Priority::VIP);
    Post(*handler_, Record("vip-at-the-end-of-time"), "later", std::numeric_limits<int64_t>::max(), Priority::VIP);
    Clock::time_point sentAt = Clock::now();
    std::vector<std::pair<int64_t, Clock::duration>> runs;
    for (int64_t delayMs : {150, 50, 100}) {
        Post(
            *handler_, [&runs, delayMs, sentAt] { runs.emplace_back(delayMs, Clock::now() - sentAt); }, "", delayMs);
    }
    ASSERT_FALSE(EventRunnersWaitIdle(1s)) << "the events due later are still pending";
    handler_->RemoveTask("later");
    ASSERT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    EXPECT_TRUE(order_.empty());
    ASSERT_EQ(runs.size(), 3U);
    EXPECT_EQ(runs[0].first, 50);
    EXPECT_EQ(runs[2].first, 150);
    for (const auto &[delayMs, waited] : runs) {
        EXPECT_GE(waited, std::chrono::milliseconds(delayMs));
    }
}

TEST_F(EventHandlerTest, RemoveTaskDropsEveryPendingTaskOfThatNameOfThisHandlerOnly)
{
    auto other = std::make_shared<EventHandler>(runner_);
    VornTest::TaskGate gate;
    HoldRunner(gate);
    Post(*handler_, Record("a-1"), "a");
    Post(*handler_, Record("b"), "b");
    Post(*handler_, Record("a-2"), "a", 10);
    Post(*other, Record("other-a"), "a");
    handler_->RemoveTask("a");
    gate.Open();
    ASSERT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(order_, (std::vector<std::string> {"b", "other-a"}));
}

TEST_F(EventHandlerTest, OnlyOwnedAttachedHandlersQueueAndDestroyingOneDropsItsEvents)
{
    EXPECT_FALSE(Post(*std::make_shared<EventHandler>(), [] {}));
    EventHandler unowned(runner_);
    EXPECT_FALSE(Post(unowned, [] {}));
    EXPECT_TRUE(EventRunnersWaitIdle(0ms));
    auto shortLived = std::make_shared<EventHandler>(runner_);
    auto token = std::make_shared<int>(0);
    std::weak_ptr<int> captured = token;
    Post(
        *shortLived, [token] {}, "", ONE_HOUR_MS);
    token.reset();
    EXPECT_FALSE(EventRunnersWaitIdle(0ms));
    shortLived.reset();
    EXPECT_TRUE(EventRunnersWaitIdle(0ms));
    EXPECT_TRUE(captured.expired());
}

TEST(EventRunnerTest, DepositedRunnerRefusesRunAndStopAndACallerDrivenOneRunsUntilStopped)
{
    auto deposited = EventRunner::Create(true);
    EXPECT_EQ(deposited->Run(), OHOS::AppExecFwk::EVENT_HANDLER_ERR_RUNNER_NO_PERMIT);
    EXPECT_EQ(deposited->Stop(), OHOS::AppExecFwk::EVENT_HANDLER_ERR_RUNNER_NO_PERMIT);

    auto driven = EventRunner::Create(false);
    auto handler = std::make_shared<EventHandler>(driven);
    std::thread::id ranOn;
    Post(*handler, [&ranOn, &driven] {
        ranOn = std::this_thread::get_id();
        EXPECT_EQ(driven->Run(), OHOS::AppExecFwk::EVENT_HANDLER_ERR_RUNNER_ALREADY);
        driven->Stop();
    });
    EXPECT_EQ(driven->Run(), OHOS::ERR_OK);
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST(EventRunnerTest, LastReferenceDroppedOnTheRunnerThreadEndsItQuietly)
{
    auto runner = EventRunner::Create(true);
    auto handler = std::make_shared<EventHandler>(runner);
    VornTest::TaskGate gate;
    Post(*handler, [handler, blocker = gate.Blocker()] { blocker(); });
    handler.reset();
    runner.reset();
    gate.Open();
    EXPECT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
}
} // namespace
