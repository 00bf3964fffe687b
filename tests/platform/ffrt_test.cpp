#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "ffrt.h"
#include "ffrt_host.h"
#include "ffrt_inner.h"
#include "process_status.h"
#include "task_gate.h"

namespace {
using namespace std::chrono_literals;
using HostPlatform::FfrtIsIdle;
using HostPlatform::FfrtWaitIdle;

constexpr auto SETTLE_TIMEOUT = 30s;

// Submits to a queue and lets go of the handle; false when the queue refused the task.
bool SubmitToQueue(ffrt_queue_t queue, std::function<void()> func, const ffrt_task_attr_t *attr = nullptr)
{
    ffrt_task_handle_t handle =
        ffrt_queue_submit_h(queue, ffrt::create_function_wrapper(std::move(func), ffrt_function_kind_queue), attr);
    ffrt_task_handle_destroy(handle);
    return handle != nullptr;
}

// Runs `func` as a task of its own; its result or exception lands in the future.
template <typename F> ffrt::future<std::invoke_result_t<F>> Async(F func)
{
    auto task = std::make_shared<ffrt::packaged_task<std::invoke_result_t<F>()>>(std::move(func));
    auto result = task->get_future();
    ffrt::submit([task] { (*task)(); });
    return result;
}

// Far more parents than running slots or threads, all suspended in the runtime's condition wait
// at once: they hold no thread meanwhile. Released, each waits in the runtime's future for a
// child it submits, giving its worker back so that the children find workers.
TEST(FfrtPoolTest, SuspendedTasksGiveTheirWorkersAndThreadsBack)
{
    constexpr size_t parents = 300;
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    const size_t threadsBefore = VornTestbed::ProcessStatus::Read().threads;
    const size_t workersBefore = HostPlatform::FfrtWorkerCount();
    HostPlatform::FfrtResetPeaks();
    ffrt::mutex mutex;
    ffrt::condition_variable opened;
    bool open = false;
    std::atomic<size_t> finished {0};
    for (size_t i = 0; i < parents; ++i) {
        ffrt::submit([&] {
            {
                std::unique_lock<ffrt::mutex> lock(mutex);
                opened.wait(lock, [&] { return open; });
            }
            if (Async([] { return 7; }).get() == 7) {
                ++finished;
            }
        });
    }
    const auto deadline = std::chrono::steady_clock::now() + SETTLE_TIMEOUT;
    while (HostPlatform::FfrtSuspendedTaskCount() < parents && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_GE(HostPlatform::FfrtSuspendedTaskCount(), parents);
    // The limit's worth of workers, the runtime's timer and nothing more.
    EXPECT_LE(VornTestbed::ProcessStatus::Read().threads,
        threadsBefore + HostPlatform::FfrtWorkerThreadLimit() - workersBefore + 1);
    {
        std::lock_guard<ffrt::mutex> lock(mutex);
        open = true;
    }
    opened.notify_all();
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(finished.load(), parents);
    EXPECT_EQ(HostPlatform::FfrtSuspendedTaskCount(), 0U);
    EXPECT_LE(HostPlatform::FfrtPeakRunningCount(), HostPlatform::FfrtRunningWorkerLimit());
    EXPECT_LE(HostPlatform::FfrtPeakWorkerCount(), HostPlatform::FfrtWorkerThreadLimit());
}

// errno read and written afresh. Within one function the compiler may keep errno's address
// across a call, which no runtime that resumes tasks on other threads can honour, the device's
// neither; code that looks errno up after a wait must see the task's own value.
__attribute__((noinline)) void SetErrno(int value)
{
    errno = value;
}

__attribute__((noinline)) int Errno()
{
    return errno;
}

// What a task's code keeps per thread must follow it to whichever worker resumes it: its errno
// and the exception its catch block handles. Many tasks switch out and back in on few workers,
// so they interleave on each thread and change threads.
TEST(FfrtPoolTest, TaskStateFollowsTheTaskAcrossSwitches)
{
    constexpr int tasks = 48;
    constexpr int rounds = 20;
    std::atomic<int> wrong {0};
    for (int i = 0; i < tasks; ++i) {
        ffrt::submit([i, &wrong] {
            auto check = [&wrong](bool good) {
                if (!good) {
                    ++wrong;
                }
            };
            for (int round = 0; round < rounds; ++round) {
                SetErrno(1000 + i);
                round % 2 == 0 ? ffrt::this_task::yield() : ffrt::this_task::sleep_for(1ms);
                check(Errno() == 1000 + i);
            }
            try {
                throw std::runtime_error(std::to_string(i));
            } catch (const std::exception &) {
                ffrt::this_task::sleep_for(1ms);
                check(std::uncaught_exceptions() == 0);
                try {
                    throw;
                } catch (const std::runtime_error &again) {
                    check(again.what() == std::to_string(i));
                }
            }
        });
    }
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(wrong.load(), 0);
}

// Time-outs and notifies race for the same waiters, from tasks and from a plain thread: every
// wait ends exactly once, none is lost, and the mutex still excludes, also while a holder is
// switched out.
TEST(FfrtSyncTest, TimedWaitsRacingNotifiesEachEndOnce)
{
    constexpr int waiters = 64;
    constexpr int rounds = 30;
    ffrt::mutex mutex;
    ffrt::condition_variable changed;
    int inside = 0;
    std::atomic<int> overlaps {0};
    std::atomic<int> ended {0};
    auto waitRounds = [&] {
        for (int round = 0; round < rounds; ++round) {
            std::unique_lock<ffrt::mutex> lock(mutex);
            if (++inside != 1) {
                ++overlaps;
            }
            --inside;
            changed.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::microseconds(100 + round * 50));
            if (++inside != 1) {
                ++overlaps;
            }
            ffrt::this_task::yield();
            --inside;
            ++ended;
        }
    };
    for (int i = 0; i < waiters; ++i) {
        ffrt::submit(waitRounds);
    }
    std::thread outside(waitRounds);
    while (ended.load() < (waiters + 1) * rounds) {
        changed.notify_all();
        std::this_thread::yield();
    }
    outside.join();
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(ended.load(), (waiters + 1) * rounds);
    EXPECT_EQ(overlaps.load(), 0);
}

TEST(FfrtSyncTest, FutureHandsOverValueExceptionOrBrokenPromise)
{
    EXPECT_THROW(Async([]() -> int { throw std::runtime_error("task failed"); }).get(), std::runtime_error);

    ffrt::future<void> abandoned;
    {
        ffrt::promise<void> promise;
        abandoned = promise.get_future();
        EXPECT_THROW(promise.get_future(), std::future_error);
    }
    ASSERT_EQ(abandoned.wait_for(0s), ffrt::future_status::ready);
    EXPECT_THROW(abandoned.get(), std::future_error);

    ffrt::promise<std::unique_ptr<int>> movable;
    ffrt::future<std::unique_ptr<int>> moved = movable.get_future();
    movable.set_value(std::make_unique<int>(5));
    EXPECT_THROW(movable.set_value(nullptr), std::future_error);
    EXPECT_EQ(*moved.get(), 5);
}

TEST(FfrtQueueTest, SerialQueueRunsOneTaskAtATimeInSubmissionOrder)
{
    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, "order", nullptr);
    std::vector<int> order;
    std::atomic<int> inFlight {0};
    std::atomic<int> maxInFlight {0};
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(SubmitToQueue(queue, [&, i] {
            int now = ++inFlight;
            maxInFlight = std::max(maxInFlight.load(), now);
            order.push_back(i);
            std::this_thread::yield();
            --inFlight;
        }));
    }
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    ffrt_queue_destroy(queue);
    ASSERT_EQ(order.size(), 100U);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(order[i], i);
    }
    EXPECT_EQ(maxInFlight.load(), 1);
}

TEST(FfrtQueueTest, DestroyDropsWaitingTasksAndWaitsForTheRunningOne)
{
    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, "destroy", nullptr);
    std::promise<void> started;
    std::atomic<bool> finished {false};
    std::atomic<bool> ranPending {false};
    auto token = std::make_shared<int>(0);
    std::weak_ptr<int> capturedByPending = token;
    SubmitToQueue(queue, [&] {
        started.set_value();
        std::this_thread::sleep_for(200ms);
        finished = true;
    });
    SubmitToQueue(queue, [&ranPending, token] { ranPending = true; });
    token.reset();
    started.get_future().wait();

    ffrt_queue_destroy(queue);
    EXPECT_TRUE(finished.load());
    EXPECT_FALSE(ranPending.load());
    EXPECT_TRUE(capturedByPending.expired());
    EXPECT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
}

TEST(FfrtQueueTest, DestroyFromTheQueuesOwnTaskReturns)
{
    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, "self-destroy", nullptr);
    VornTest::TaskGate gate;
    std::atomic<bool> destroyed {false};
    std::atomic<bool> ranPending {false};
    SubmitToQueue(queue, [&, blocker = gate.Blocker()] {
        blocker();
        ffrt_queue_destroy(queue);
        destroyed = true;
    });
    SubmitToQueue(queue, [&ranPending] { ranPending = true; });
    gate.Open();
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_TRUE(destroyed.load());
    EXPECT_FALSE(ranPending.load());
}

TEST(FfrtHostTest, IdleOnlyWhenNothingIsQueuedRunningOrDelayed)
{
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_TRUE(FfrtIsIdle());
    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, "idle", nullptr);
    VornTest::TaskGate gate;
    SubmitToQueue(queue, gate.Blocker());
    ASSERT_TRUE(gate.WaitStarted(SETTLE_TIMEOUT));
    EXPECT_FALSE(FfrtIsIdle());
    EXPECT_FALSE(FfrtWaitIdle(20ms));
    gate.Open();
    EXPECT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));

    ffrt_task_attr_t attr;
    ffrt_task_attr_init(&attr);
    // What a negative delay in milliseconds turns into: due in the far future, never at once.
    ffrt_task_attr_set_delay(&attr, UINT64_MAX);
    SubmitToQueue(
        queue, [] {}, &attr);
    ffrt_task_attr_destroy(&attr);
    EXPECT_FALSE(FfrtIsIdle());
    ffrt_queue_destroy(queue);
    EXPECT_TRUE(FfrtIsIdle());
}

TEST(FfrtHostTest, BrokenQueueSubmitRefusesAndReleasesTheTask)
{
    struct BrokenRuntime {
        BrokenRuntime() { HostPlatform::FfrtSetQueueSubmitBroken(true); }
        ~BrokenRuntime() { HostPlatform::FfrtSetQueueSubmitBroken(false); }
    };
    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, "broken", nullptr);
    std::atomic<int> runs {0};
    {
        BrokenRuntime broken;
        auto token = std::make_shared<int>(0);
        std::weak_ptr<int> captured = token;
        EXPECT_FALSE(SubmitToQueue(queue, [&runs, token] { ++runs; }));
        token.reset();
        EXPECT_TRUE(captured.expired());
        EXPECT_TRUE(FfrtIsIdle());
    }
    ASSERT_TRUE(SubmitToQueue(queue, [&runs] { ++runs; }));
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    ffrt_queue_destroy(queue);
    EXPECT_EQ(runs.load(), 1);
}
} // namespace
