#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ffrt_executor.h"
#include "ffrt_host.h"
#include "hilog_host.h"
#include "scoped_env.h"
#include "task_gate.h"
#include "vorn_error_code.h"

using namespace OHOS::Vorn;
using namespace std::chrono_literals;
using HostPlatform::FfrtIsIdle;
using HostPlatform::FfrtWaitIdle;
using Mode = FFRTExecutor::Mode;

namespace {
constexpr auto SETTLE_TIMEOUT = 10s;
} // namespace

TEST(FFRTExecutorTest, NormalSubmitRunsTasksConcurrentlyWithoutHandlesAndCarriesResults)
{
    FFRTExecutor executor("normal", Mode::NORMAL_SUBMIT);
    // The first task can only succeed if the second one runs beside it.
    std::promise<void> second;
    std::promise<bool> first;
    executor.PostTaskDelay(
        [&] { first.set_value(second.get_future().wait_for(SETTLE_TIMEOUT) == std::future_status::ready); }, "first",
        0);
    EXPECT_EQ(executor.PendingHandleCount(), 0);
    executor.PostTaskDelay([&] { second.set_value(); }, "second", 0);
    EXPECT_TRUE(first.get_future().get());

    ffrt::future<VornErrorCodeType> code = executor.Submit([] { return ERR_SERVICE_INTERNAL; }, "code");
    ffrt::future<std::string> text = executor.Submit([] { return std::string("late"); }, "text", 20);
    ffrt::future<int> failed = executor.Submit([]() -> int { throw std::runtime_error("attempt failed"); }, "throws");
    EXPECT_EQ(code.get(), ERR_SERVICE_INTERNAL);
    EXPECT_EQ(text.get(), "late");
    EXPECT_THROW(failed.get(), std::runtime_error);
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(executor.PendingHandleCount(), 0);
}

TEST(FFRTExecutorTest, EventHandlerRunsOneAtATimeInOrderAndForgetsFinishedTasks)
{
    FFRTExecutor executor("serial", Mode::EVENT_HANDLER);
    // Held until every task is posted: a task that finishes before its handle is stored leaves
    // the handle behind.
    VornTest::TaskGate gate;
    executor.PostTaskDelay(gate.Blocker(), "blocker", 0);
    std::mutex mutex;
    std::vector<int> order;
    std::atomic<int> inFlight {0};
    std::atomic<bool> overlapped {false};
    for (int i = 0; i < 20; ++i) {
        executor.PostTaskDelay(
            [&, i] {
                overlapped = overlapped || inFlight.fetch_add(1) != 0;
                std::this_thread::yield();
                std::lock_guard<std::mutex> lock(mutex);
                order.push_back(i);
                inFlight.fetch_sub(1);
            },
            "t" + std::to_string(i), 0);
    }
    gate.Open();
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(order.size(), 20U);
    EXPECT_FALSE(overlapped);
    EXPECT_EQ(executor.PendingHandleCount(), 0);
}

TEST(FFRTExecutorTest, HandlesAreKeyedByNameAndRemoveTaskDoesNothing)
{
    HostPlatform::LogCapture capture;
    FFRTExecutor executor("names", Mode::EVENT_HANDLER);
    VornTest::TaskGate gate;
    executor.PostTaskDelay(gate.Blocker(), "blocker", 0);
    ASSERT_TRUE(gate.WaitStarted(SETTLE_TIMEOUT));
    int runs = 0;
    executor.PostTaskDelay([&runs] { ++runs; }, "a", 0);
    executor.PostTaskDelay([&runs] { ++runs; }, "a", 0);
    EXPECT_EQ(executor.PendingHandleCount(), 2); // "blocker" and one "a"
    executor.RemoveTask("a");

    // A throwing task leaves RunTask without its "done." line and without forgetting its name.
    EXPECT_THROW(executor.RunTask([] { throw std::runtime_error("task failed"); }, "a"), std::runtime_error);
    EXPECT_TRUE(capture.Contains("start. taskName:a"));
    EXPECT_FALSE(capture.Contains("done. taskName:a"));
    EXPECT_EQ(executor.PendingHandleCount(), 2);

    gate.Open();
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(executor.PendingHandleCount(), 0);
}

TEST(FFRTExecutorTest, OnlyDelayZeroRunsAtOnce)
{
    auto executor = std::make_unique<FFRTExecutor>("delays", Mode::EVENT_HANDLER);
    bool lateRan = false;
    executor->PostTaskDelay([&lateRan] { lateRan = true; }, "late", 60 * 1000);
    executor->PostTaskDelay([&lateRan] { lateRan = true; }, "negative", -1);
    EXPECT_EQ(executor->PendingHandleCount(), 2);
    std::promise<void> now;
    executor->PostTaskDelay([&now] { now.set_value(); }, "now", 0);
    ASSERT_EQ(now.get_future().wait_for(SETTLE_TIMEOUT), std::future_status::ready);
    EXPECT_FALSE(FfrtIsIdle());

    // Milliseconds become microseconds: a 50 ms task must not run after 50 µs.
    const auto posted = std::chrono::steady_clock::now();
    std::promise<std::chrono::steady_clock::time_point> ran;
    executor->PostTaskDelay([&ran] { ran.set_value(std::chrono::steady_clock::now()); }, "soon", 50);
    auto ranAt = ran.get_future();
    ASSERT_EQ(ranAt.wait_for(SETTLE_TIMEOUT), std::future_status::ready);
    EXPECT_GE(ranAt.get() - posted, 50ms);

    // Destroying the executor drops the tasks still waiting for their time.
    executor.reset();
    EXPECT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_FALSE(lateRan);
}

TEST(FFRTExecutorTest, BrokenRuntimeDropsDelayedTasks)
{
    HostPlatform::LogCapture capture;
    HostPlatform::FfrtSetQueueSubmitBroken(true);
    FFRTExecutor executor("broken-delayed", Mode::EVENT_HANDLER);
    bool ran = false;
    executor.PostTaskDelay([&ran] { ran = true; }, "d1", 1);
    executor.PostTaskDelay([&ran] { ran = true; }, "d-1", -1);
    // Pool submissions cannot fail that way and keep working.
    FFRTExecutor pool("broken-normal", Mode::NORMAL_SUBMIT);
    std::promise<void> poolRan;
    pool.PostTaskDelay([&poolRan] { poolRan.set_value(); }, "n", 0);
    EXPECT_EQ(poolRan.get_future().wait_for(SETTLE_TIMEOUT), std::future_status::ready);
    HostPlatform::FfrtSetQueueSubmitBroken(false);

    EXPECT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_FALSE(ran);
    EXPECT_EQ(executor.PendingHandleCount(), 0);
    EXPECT_TRUE(capture.Contains("FFRT is broken! Abort PostDelayTask."));
}

TEST(FFRTExecutorDeathTest, BrokenRuntimeEndsTheProcessForImmediateTasks)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            VornTest::ScopedEnv toStderr("VORN_HILOG_FILE", std::nullopt);
            HostPlatform::FfrtSetQueueSubmitBroken(true);
            FFRTExecutor executor("broken-immediate", Mode::EVENT_HANDLER);
            executor.PostTaskDelay([] {}, "i", 0);
        },
        "FFRT is broken! Use std::thread\\.");
}
