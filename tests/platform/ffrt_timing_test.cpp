#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ffrt.h"
#include "ffrt_host.h"
#include "ffrt_inner.h"

namespace {
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto SETTLE_TIMEOUT = 30s;
// Slack for a loaded machine; only lateness is tolerated, never earliness.
constexpr auto LATENESS_ALLOWED = 2s;

// Task attributes that hold a task back for `delay`.
class DelayAttr {
public:
    explicit DelayAttr(std::chrono::milliseconds delay)
    {
        ffrt_task_attr_init(&attr_);
        ffrt_task_attr_set_delay(&attr_, static_cast<uint64_t>(delay.count()) * 1000);
    }
    ~DelayAttr() { ffrt_task_attr_destroy(&attr_); }
    DelayAttr(const DelayAttr &) = delete;
    DelayAttr &operator=(const DelayAttr &) = delete;
    const ffrt_task_attr_t *Get() const { return &attr_; }

private:
    ffrt_task_attr_t attr_;
};

// A serial queue runs its delayed tasks in due order; neither they nor a delayed pool task run
// early.
TEST(FfrtTimingTest, DelayedTasksRunWhenDueAndAQueuesInDueOrder)
{
    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, "delays", nullptr);
    std::mutex mutex;
    std::vector<std::pair<int, Clock::duration>> runs;
    const std::vector<std::chrono::milliseconds> delays {300ms, 100ms, 200ms, 0ms};
    Clock::time_point submittedAt = Clock::now();
    for (size_t i = 0; i < delays.size(); ++i) {
        int index = static_cast<int>(i);
        ffrt_task_handle_destroy(ffrt_queue_submit_h(queue,
            ffrt::create_function_wrapper(
                [&, index] {
                    std::lock_guard<std::mutex> lock(mutex);
                    runs.emplace_back(index, Clock::now() - submittedAt);
                },
                ffrt_function_kind_queue),
            DelayAttr(delays[i]).Get()));
    }
    Clock::duration poolTaskWaited {};
    ffrt_submit_base(ffrt::create_function_wrapper([&] { poolTaskWaited = Clock::now() - submittedAt; }), nullptr,
        nullptr, DelayAttr(300ms).Get());
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(SETTLE_TIMEOUT));
    ffrt_queue_destroy(queue);
    EXPECT_GE(poolTaskWaited, 300ms);
    EXPECT_LT(poolTaskWaited, 300ms + LATENESS_ALLOWED);
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
    const size_t blocked = HostPlatform::FfrtRunningWorkerLimit();
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    HostPlatform::FfrtResetPeaks();
    for (size_t i = 0; i < blocked; ++i) {
        ffrt::submit([opened] { opened.wait(); });
    }
    Clock::time_point deadline = Clock::now() + SETTLE_TIMEOUT;
    while (HostPlatform::FfrtRunningCount() < blocked && Clock::now() < deadline) {
        std::this_thread::sleep_for(10ms);
    }
    gate.set_value();
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_GE(HostPlatform::FfrtPeakWorkerCount(), blocked);

    // The pool keeps a base of one worker per CPU (at least two) and lets the rest go.
    const size_t base =
        std::min<size_t>(HostPlatform::FfrtWorkerThreadLimit(), std::max(2U, std::thread::hardware_concurrency()));
    deadline = Clock::now() + 20s;
    while (HostPlatform::FfrtWorkerCount() > base && Clock::now() < deadline) {
        std::this_thread::sleep_for(100ms);
    }
    EXPECT_LE(HostPlatform::FfrtWorkerCount(), base);
}

// Holds every running slot with tasks blocked in std:: waits until Open().
class SlotBlockade {
public:
    SlotBlockade()
    {
        const size_t slots = HostPlatform::FfrtRunningWorkerLimit();
        for (size_t i = 0; i < slots; ++i) {
            ffrt::submit([this] {
                std::unique_lock<std::mutex> lock(mutex_);
                ++blocked_;
                changed_.notify_all();
                changed_.wait(lock, [this] { return open_; });
            });
        }
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this, slots] { return blocked_ == slots; });
    }
    void Open()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    size_t blocked_ = 0;
    bool open_ = false;
};

// Parents, twice as many as there are running slots and all queued before any of them runs,
// each wait up to a second for a child they submit. Waiting in std:: they keep their slots, so
// the first slot-full of them miss their children; waiting in the runtime's future they give
// them back, so every child runs in time.
template <typename Promise, typename Ready> int ParentsWhoseChildMissedTheWait(Ready isReady)
{
    const size_t parents = 2 * HostPlatform::FfrtRunningWorkerLimit();
    std::atomic<int> missed {0};
    SlotBlockade blockade;
    for (size_t i = 0; i < parents; ++i) {
        ffrt::submit([&missed, isReady] {
            auto child = std::make_shared<Promise>();
            auto result = child->get_future();
            ffrt::submit([child] { child->set_value(); });
            if (!isReady(result.wait_for(1s))) {
                ++missed;
            }
        });
    }
    blockade.Open();
    EXPECT_TRUE(HostPlatform::FfrtWaitIdle(SETTLE_TIMEOUT));
    return missed.load();
}

TEST(FfrtTimingTest, OnlyRuntimeWaitsLetTheWaitedForTaskRun)
{
    const int stdMissed = ParentsWhoseChildMissedTheWait<std::promise<void>>(
        [](std::future_status status) { return status == std::future_status::ready; });
    EXPECT_GE(stdMissed, static_cast<int>(HostPlatform::FfrtRunningWorkerLimit()));
    const int ffrtMissed = ParentsWhoseChildMissedTheWait<ffrt::promise<void>>(
        [](ffrt::future_status status) { return status == ffrt::future_status::ready; });
    EXPECT_EQ(ffrtMissed, 0);
}

TEST(FfrtTimingTest, TimedRuntimeWaitsNeverEndEarly)
{
    constexpr auto wait = 200ms;
    auto measure = [wait] {
        ffrt::mutex mutex;
        ffrt::condition_variable never;
        std::unique_lock<ffrt::mutex> lock(mutex);
        Clock::time_point start = Clock::now();
        EXPECT_EQ(never.wait_until(lock, start + wait), ffrt::cv_status::timeout);
        Clock::duration waited = Clock::now() - start;
        start = Clock::now();
        ffrt::this_task::sleep_for(wait);
        return std::min(waited, Clock::now() - start);
    };
    EXPECT_GE(measure(), wait);
    auto inTask = std::make_shared<ffrt::packaged_task<Clock::duration()>>(measure);
    ffrt::future<Clock::duration> waitedInTask = inTask->get_future();
    ffrt::submit([inTask] { (*inTask)(); });
    EXPECT_GE(waitedInTask.get(), wait);
}
} // namespace
