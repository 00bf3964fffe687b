#include <chrono>
#include <future>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "event_handler.h"
#include "event_runner.h"
#include "eventhandler_host.h"

namespace {
using namespace std::chrono_literals;
using OHOS::AppExecFwk::EventHandler;
using OHOS::AppExecFwk::EventQueue;
using OHOS::AppExecFwk::EventRunner;
using OHOS::AppExecFwk::InnerEvent;
using Priority = EventQueue::Priority;
using HostPlatform::EventRunnersIdle;
using HostPlatform::EventRunnersWaitIdle;

constexpr auto SETTLE_TIMEOUT = 30s;
constexpr int64_t ONE_HOUR_MS = 3600 * 1000;

// Holds a runner inside one task until Open(), so that everything sent meanwhile queues up.
class RunnerGate {
public:
    explicit RunnerGate(EventHandler &handler)
    {
        std::shared_future<void> opened = gate_.get_future().share();
        auto started = std::make_shared<std::promise<void>>();
        std::future<void> running = started->get_future();
        handler.PostTask([opened, started] {
            started->set_value();
            opened.wait();
        });
        running.wait();
    }
    ~RunnerGate() { Open(); }
    RunnerGate(const RunnerGate &) = delete;
    RunnerGate &operator=(const RunnerGate &) = delete;

    void Open()
    {
        if (!opened_) {
            opened_ = true;
            gate_.set_value();
        }
    }

private:
    std::promise<void> gate_;
    bool opened_ = false;
};

class EventHandlerTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT)); }

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
    RunnerGate gate(*handler_);
    handler_->PostTask(Record("low-1"), "", 0, Priority::LOW);
    handler_->PostTask(Record("idle"), "", 0, Priority::IDLE);
    handler_->PostTask(Record("high"), "", 0, Priority::HIGH);
    handler_->PostTask(Record("low-2"), "", 0, Priority::LOW);
    handler_->PostTask(Record("vip"), "", 0, Priority::VIP);
    handler_->PostTask(Record("immediate"), "", 0, Priority::IMMEDIATE);
    gate.Open();
    ASSERT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(order_, (std::vector<std::string> {"vip", "immediate", "high", "low-1", "low-2", "idle"}));
}

TEST_F(EventHandlerTest, DelayedEventsRunInDueOrderNeverEarlyWhateverTheirPriority)
{
    using Clock = InnerEvent::Clock;
    handler_->PostTask(Record("vip-in-an-hour"), "later", ONE_HOUR_MS, Priority::VIP);
    handler_->PostTask(Record("vip-at-the-end-of-time"), "later", std::numeric_limits<int64_t>::max(), Priority::VIP);
    Clock::time_point sentAt = Clock::now();
    std::vector<std::pair<int64_t, Clock::duration>> runs;
    for (int64_t delayMs : {150, 50, 100}) {
        handler_->PostTask([&runs, delayMs, sentAt] { runs.emplace_back(delayMs, Clock::now() - sentAt); }, delayMs);
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
    {
        RunnerGate gate(*handler_);
        handler_->PostTask(Record("a-1"), "a");
        handler_->PostTask(Record("b"), "b");
        handler_->PostTask(Record("a-2"), "a", 10);
        other->PostTask(Record("other-a"), "a");
        EXPECT_EQ(handler_->RemoveTaskWithRet("a"), OHOS::ERR_OK);
        EXPECT_NE(handler_->RemoveTaskWithRet("a"), OHOS::ERR_OK);
    }
    ASSERT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(order_, (std::vector<std::string> {"b", "other-a"}));
}

TEST_F(EventHandlerTest, OnlyOwnedAttachedHandlersQueueAndDestroyingOneDropsItsEvents)
{
    EXPECT_FALSE(std::make_shared<EventHandler>()->PostTask([] {}));
    EventHandler unowned(runner_);
    EXPECT_FALSE(unowned.PostTask([] {}));
    EXPECT_TRUE(EventRunnersIdle());
    auto shortLived = std::make_shared<EventHandler>(runner_);
    auto token = std::make_shared<int>(0);
    std::weak_ptr<int> captured = token;
    shortLived->PostTask([token] {}, "", ONE_HOUR_MS);
    token.reset();
    EXPECT_FALSE(EventRunnersIdle());
    shortLived.reset();
    EXPECT_TRUE(EventRunnersIdle());
    EXPECT_TRUE(captured.expired());
}

TEST_F(EventHandlerTest, IdEventsReachProcessEventWithTheirData)
{
    struct Recorder : EventHandler {
        using EventHandler::EventHandler;
        void ProcessEvent(const InnerEvent::Pointer &event) override
        {
            id = event->GetInnerEventId();
            param = event->GetParam();
            text = event->GetSharedObject<std::string>();
        }
        uint32_t id = 0;
        int64_t param = 0;
        std::shared_ptr<std::string> text;
    };
    auto recorder = std::make_shared<Recorder>(runner_);
    InnerEvent::Pointer event = InnerEvent::Get(7, std::make_shared<std::string>("payload"), 42);
    ASSERT_TRUE(recorder->SendSyncEvent(event));
    EXPECT_EQ(recorder->id, 7U);
    EXPECT_EQ(recorder->param, 42);
    ASSERT_NE(recorder->text, nullptr);
    EXPECT_EQ(*recorder->text, "payload");
}

TEST_F(EventHandlerTest, IdleQueriesFollowPendingAndRunningEvents)
{
    ASSERT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    {
        RunnerGate gate(*handler_);
        EXPECT_FALSE(handler_->IsIdle());
        EXPECT_FALSE(EventRunnersIdle());
        EXPECT_FALSE(EventRunnersWaitIdle(20ms));
    }
    EXPECT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    EXPECT_TRUE(handler_->IsIdle());
}

TEST(EventRunnerTest, DepositedRunnerOwnsItsThreadAndRefusesRunAndStop)
{
    auto runner = EventRunner::Create("vorn-worker-thread-name");
    EXPECT_EQ(runner->Run(), OHOS::AppExecFwk::EVENT_HANDLER_ERR_RUNNER_NO_PERMIT);
    EXPECT_EQ(runner->Stop(), OHOS::AppExecFwk::EVENT_HANDLER_ERR_RUNNER_NO_PERMIT);
    EXPECT_FALSE(runner->IsCurrentRunnerThread());

    auto handler = std::make_shared<EventHandler>(runner);
    std::shared_ptr<EventRunner> current;
    bool onRunnerThread = false;
    ASSERT_TRUE(handler->PostSyncTask([&] {
        current = EventRunner::Current();
        onRunnerThread = runner->IsCurrentRunnerThread();
    }));
    EXPECT_EQ(current, runner);
    EXPECT_TRUE(onRunnerThread);
    current.reset();

    // Once the loop has let go of the handler it served, the test holds the last references and
    // the runner's destructor joins its thread, which lets go of the queue as it ends.
    ASSERT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    std::weak_ptr<EventQueue> queue = runner->GetEventQueue();
    handler.reset();
    runner.reset();
    EXPECT_TRUE(queue.expired());
}

TEST(EventRunnerTest, LastReferenceDroppedOnTheRunnerThreadEndsItQuietly)
{
    auto runner = EventRunner::Create(true);
    auto handler = std::make_shared<EventHandler>(runner);
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    handler->PostTask([handler, opened] { opened.wait(); });
    handler.reset();
    runner.reset();
    gate.set_value();
    EXPECT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
}

} // namespace
