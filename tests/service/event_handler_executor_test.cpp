#include <chrono>
#include <future>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "event_handler_executor.h"
#include "eventhandler_host.h"
#include "task_gate.h"

using namespace OHOS::Vorn;
using namespace std::chrono_literals;
using HostPlatform::EventRunnersWaitIdle;
using Names = std::vector<std::string>;

namespace {
constexpr auto SETTLE_TIMEOUT = 10s;
} // namespace

// Tasks run on the runner's one thread; the names are read only once the runner is idle.
TEST(EventHandlerExecutorTest, RunsTasksInOrderAndDelayedOnesAfterTheirMilliseconds)
{
    EventHandlerExecutor executor(true);
    const auto posted = std::chrono::steady_clock::now();
    std::promise<std::chrono::steady_clock::time_point> ranAt;
    executor.PostTaskDelay([&ranAt] { ranAt.set_value(std::chrono::steady_clock::now()); }, "later", 50);
    Names ran;
    Names expected;
    for (int i = 0; i < 20; ++i) {
        expected.push_back("t" + std::to_string(i));
        executor.PostTaskDelay([&ran, name = expected.back()] { ran.push_back(name); }, expected.back(), 0);
    }
    auto later = ranAt.get_future();
    ASSERT_EQ(later.wait_for(SETTLE_TIMEOUT), std::future_status::ready);
    EXPECT_GE(later.get() - posted, 50ms);
    ASSERT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(ran, expected);
}

TEST(EventHandlerExecutorTest, RemoveTaskDropsEveryPendingTaskOfThatName)
{
    EventHandlerExecutor executor(true);
    VornTest::TaskGate gate;
    executor.PostTaskDelay(gate.Blocker(), "blocker", 0);
    ASSERT_TRUE(gate.WaitStarted(SETTLE_TIMEOUT));
    Names ran;
    executor.PostTaskDelay([&ran] { ran.push_back("x1"); }, "x", 0);
    executor.PostTaskDelay([&ran] { ran.push_back("y"); }, "y", 0);
    executor.PostTaskDelay([&ran] { ran.push_back("x2"); }, "x", 30);
    executor.RemoveTask("x");
    gate.Open();
    ASSERT_TRUE(EventRunnersWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(ran, Names {"y"});
}
