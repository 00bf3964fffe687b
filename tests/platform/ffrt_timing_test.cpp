#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ffrt.h"
#include "ffrt_host.h"

namespace {
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto SETTLE_TIMEOUT = 30s;
// Slack for a loaded machine; only lateness is tolerated, never earliness.
constexpr auto LATENESS_ALLOWED = 2s;

uint64_t Micros(std::chrono::milliseconds delay)
{
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(delay).count());
}

TEST(FfrtTimingTest, DelayedPoolTaskNeverRunsEarly)
{
    constexpr auto delay = 300ms;
    std::promise<Clock::time_point> ranAt;
    std::future<Clock::time_point> result = ranAt.get_future();
    Clock::time_point submittedAt = Clock::now();
    ffrt::submit([&ranAt] { ranAt.set_value(Clock::now()); }, ffrt::task_attr().delay(Micros(delay)));
    ASSERT_EQ(result.wait_for(delay + LATENESS_ALLOWED), std::future_status::ready);
    Clock::duration waited = result.get() - submittedAt;
    EXPECT_GE(waited, delay);
    EXPECT_LT(waited, delay + LATENESS_ALLOWED);
}

TEST(FfrtTimingTest, SerialQueueRunsDelayedTasksWhenDueAndInDueOrder)
{
    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, "delays", nullptr);
    std::mutex mutex;
    std::vector<std::pair<int, Clock::duration>> runs;
    const std::vector<std::chrono::milliseconds> delays {300ms, 100ms, 200ms, 0ms};
    Clock::time_point submittedAt = Clock::now();
    for (size_t i = 0; i < delays.size(); ++i) {
        ffrt_task_attr_t attr;
        ffrt_task_attr_init(&attr);
        ffrt_task_attr_set_delay(&attr, Micros(delays[i]));
        int index = static_cast<int>(i);
        ffrt_queue_submit(queue, ffrt::create_function_wrapper([&, index] {
            std::lock_guard<std::mutex> lock(mutex);
            runs.emplace_back(index, Clock::now() - submittedAt);
        }, ffrt_function_kind_queue), &attr);
        ffrt_task_attr_destroy(&attr);
    }
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(SETTLE_TIMEOUT));
    ffrt_queue_destroy(queue);
    ASSERT_EQ(runs.size(), 4U);
    std::vector<int> order;
    for (const auto &[index, elapsed] : runs) {
        order.push_back(index);
        EXPECT_GE(elapsed, delays[index]) << "task " << index << " ran early";
    }
    EXPECT_EQ(order, (std::vector<int> {3, 1, 2, 0}));
}

TEST(FfrtTimingTest, ExtraWorkersLeaveAfterIdling)
{
    constexpr int blocked = 50;
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    for (int i = 0; i < blocked; ++i) {
        ffrt::submit([opened] { opened.wait(); });
    }
    gate.set_value();
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_GE(HostPlatform::FfrtPeakWorkerCount(), static_cast<size_t>(blocked));

    // The pool keeps a base of one worker per CPU (at least two) and lets the rest go.
    const size_t base = std::max(2U, std::thread::hardware_concurrency());
    Clock::time_point deadline = Clock::now() + 20s;
    while (HostPlatform::FfrtWorkerCount() > base && Clock::now() < deadline) {
        std::this_thread::sleep_for(100ms);
    }
    EXPECT_LE(HostPlatform::FfrtWorkerCount(), base);
}
} // namespace
