#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cerrno>
#include <cstdint>
#include <exception>
#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ffrt.h"
#include "ffrt_host.h"
#include "ffrt_inner.h"
#include "process_status.h"

namespace {
using namespace std::chrono_literals;
using HostPlatform::FfrtIsIdle;
using HostPlatform::FfrtWaitIdle;

constexpr auto SETTLE_TIMEOUT = 30s;

ffrt_function_header_t *QueueFunction(std::function<void()> func)
{
    return ffrt::create_function_wrapper(std::move(func), ffrt_function_kind_queue);
}

// Runs a serial queue's tasks behind one that holds the queue until Open() is called.
class BlockedQueue {
public:
    explicit BlockedQueue(const char *name) : queue_(ffrt_queue_create(ffrt_queue_serial, name, nullptr))
    {
        std::shared_future<void> opened = gate_.get_future().share();
        auto started = std::make_shared<std::promise<void>>();
        std::future<void> running = started->get_future();
        blocker_ = ffrt_queue_submit_h(queue_, QueueFunction([opened, started] {
            started->set_value();
            opened.wait();
        }), nullptr);
        running.wait();
    }
    ~BlockedQueue()
    {
        Open();
        ffrt_task_handle_destroy(blocker_);
        ffrt_queue_destroy(queue_);
    }
    BlockedQueue(const BlockedQueue &) = delete;
    BlockedQueue &operator=(const BlockedQueue &) = delete;

    void Open()
    {
        if (!opened_) {
            opened_ = true;
            gate_.set_value();
        }
    }
    ffrt_queue_t Get() const { return queue_; }
    ffrt_task_handle_t Blocker() const { return blocker_; }

private:
    ffrt_queue_t queue_;
    std::promise<void> gate_;
    bool opened_ = false;
    ffrt_task_handle_t blocker_ = nullptr;
};

// Many more parents than running slots, all inside the runtime's wait at once before any child
// exists: each gives its worker back while it waits, so the children find workers.
TEST(FfrtPoolTest, TasksWaitingInRuntimePrimitivesGiveTheirWorkersBack)
{
    constexpr int parents = 200;
    ffrt::mutex mutex;
    ffrt::condition_variable allStarted;
    int started = 0;
    std::atomic<int> finished {0};
    HostPlatform::FfrtResetPeaks();
    for (int i = 0; i < parents; ++i) {
        ffrt::submit([&] {
            {
                std::unique_lock<ffrt::mutex> lock(mutex);
                if (++started == parents) {
                    allStarted.notify_all();
                }
                allStarted.wait(lock, [&] { return started == parents; });
            }
            ffrt::future<int> result = ffrt::async([] { return 7; });
            if (result.get() == 7) {
                ++finished;
            }
        });
    }
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(finished.load(), parents);
    EXPECT_LE(HostPlatform::FfrtPeakRunningCount(), HostPlatform::FfrtRunningWorkerLimit());
    EXPECT_LE(HostPlatform::FfrtPeakWorkerCount(), HostPlatform::FfrtWorkerThreadLimit());
}

// Suspended tasks hold no thread: with far more tasks waiting at once than the thread limit,
// the process keeps to the limit plus the runtime's timer and the test's own thread.
TEST(FfrtPoolTest, SuspendedTasksHoldNoThread)
{
    constexpr size_t waiting = 300;
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    const size_t threadsBefore = VornTestbed::ProcessStatus::Read().threads;
    const size_t workersBefore = HostPlatform::FfrtWorkerCount();
    ffrt::mutex mutex;
    ffrt::condition_variable opened;
    bool open = false;
    std::vector<ffrt::future<void>> sleepers;
    for (size_t i = 0; i < waiting; ++i) {
        ffrt::submit([&] {
            std::unique_lock<ffrt::mutex> lock(mutex);
            opened.wait(lock, [&] { return open; });
        });
        sleepers.push_back(ffrt::async([] { ffrt::this_task::sleep_for(50ms); }));
    }
    const auto deadline = std::chrono::steady_clock::now() + SETTLE_TIMEOUT;
    while (HostPlatform::FfrtSuspendedTaskCount() < waiting && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_GE(HostPlatform::FfrtSuspendedTaskCount(), waiting);
    EXPECT_LE(HostPlatform::FfrtWorkerCount(), HostPlatform::FfrtWorkerThreadLimit());
    EXPECT_LE(VornTestbed::ProcessStatus::Read().threads, threadsBefore + HostPlatform::FfrtWorkerThreadLimit() - workersBefore + 1);
    for (ffrt::future<void> &sleeper : sleepers) {
        sleeper.get();
    }
    {
        std::lock_guard<ffrt::mutex> lock(mutex);
        open = true;
    }
    opened.notify_all();
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(HostPlatform::FfrtSuspendedTaskCount(), 0U);
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

// What a task's code keeps per thread must follow it to whichever worker resumes it: its errno,
// the exception its catch block handles, the children ffrt::wait waits for. Many tasks switch
// out and back in on few workers, so they interleave on each thread and change threads.
TEST(FfrtPoolTest, TaskStateFollowsTheTaskAcrossSwitches)
{
    constexpr int tasks = 48;
    constexpr int rounds = 20;
    std::atomic<int> wrong {0};
    std::atomic<int> childrenDone {0};
    for (int i = 0; i < tasks; ++i) {
        ffrt::submit([i, &wrong, &childrenDone] {
            auto check = [&wrong](bool good) {
                if (!good) {
                    ++wrong;
                }
            };
            const uint64_t id = ffrt::this_task::get_id();
            for (int round = 0; round < rounds; ++round) {
                SetErrno(1000 + i);
                round % 2 == 0 ? ffrt::this_task::yield() : ffrt::this_task::sleep_for(1ms);
                check(Errno() == 1000 + i && ffrt::this_task::get_id() == id);
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
            std::atomic<int> mine {0};
            for (int child = 0; child < 3; ++child) {
                ffrt::submit([&mine, &childrenDone] {
                    ffrt::this_task::sleep_for(2ms);
                    ++mine;
                    ++childrenDone;
                });
            }
            ffrt::wait();
            check(mine.load() == 3);
        });
    }
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(childrenDone.load(), tasks * 3);
}

// A task blocked in a std:: wait keeps its slot: with every slot held that way, nothing else runs
// until one of them is let go.
TEST(FfrtPoolTest, TasksBlockedInStdWaitsKeepTheirWorkers)
{
    const size_t limit = HostPlatform::FfrtRunningWorkerLimit();
    std::mutex mutex;
    std::condition_variable changed;
    size_t blocked = 0;
    bool released = false;
    std::atomic<bool> lateRan {false};
    for (size_t i = 0; i < limit; ++i) {
        ffrt::submit([&] {
            std::unique_lock<std::mutex> lock(mutex);
            ++blocked;
            changed.notify_all();
            changed.wait(lock, [&] { return released; });
        });
    }
    {
        std::unique_lock<std::mutex> lock(mutex);
        ASSERT_TRUE(changed.wait_for(lock, SETTLE_TIMEOUT, [&] { return blocked == limit; }));
    }
    ffrt::submit([&lateRan] { lateRan = true; });
    EXPECT_EQ(HostPlatform::FfrtRunningCount(), limit);
    EXPECT_FALSE(lateRan.load());
    {
        std::lock_guard<std::mutex> lock(mutex);
        released = true;
    }
    changed.notify_all();
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_TRUE(lateRan.load());
}

TEST(FfrtSyncTest, MutexExcludesAcrossSuspendedTasks)
{
    constexpr int tasks = 64;
    constexpr int rounds = 200;
    ffrt::mutex mutex;
    int counter = 0;
    for (int i = 0; i < tasks; ++i) {
        ffrt::submit([&] {
            for (int round = 0; round < rounds; ++round) {
                std::lock_guard<ffrt::mutex> lock(mutex);
                int seen = counter;
                ffrt::this_task::yield();
                counter = seen + 1;
            }
        });
    }
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(counter, tasks * rounds);
}

// Time-outs and notifies race for the same waiters, from tasks and from a plain thread: every
// wait ends exactly once, none is lost, and the mutex still excludes.
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
            changed.wait_for(lock, std::chrono::microseconds(100 + round * 50));
            if (++inside != 1) {
                ++overlaps;
            }
            --inside;
            ++ended;
        }
    };
    for (int i = 0; i < waiters; ++i) {
        ffrt::submit(waitRounds);
    }
    std::thread outside(waitRounds);
    while (ended.load() < (waiters + 1) * rounds) {
        changed.notify_one();
        changed.notify_all();
        std::this_thread::yield();
    }
    outside.join();
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_EQ(ended.load(), (waiters + 1) * rounds);
    EXPECT_EQ(overlaps.load(), 0);
}

TEST(FfrtSyncTest, RecursiveMutexReentersOnlyForItsOwner)
{
    ffrt::recursive_mutex mutex;
    std::promise<bool> otherGotIt;
    auto task = ffrt::async([&] {
        std::lock_guard<ffrt::recursive_mutex> outer(mutex);
        std::lock_guard<ffrt::recursive_mutex> inner(mutex);
        std::thread other([&] { otherGotIt.set_value(mutex.try_lock()); });
        other.join();
    });
    task.get();
    EXPECT_FALSE(otherGotIt.get_future().get());
    ASSERT_TRUE(mutex.try_lock());
    mutex.unlock();
}

TEST(FfrtSyncTest, FutureHandsOverValueExceptionOrBrokenPromise)
{
    ffrt::packaged_task<int()> throwing([]() -> int { throw std::runtime_error("task failed"); });
    ffrt::future<int> failed = throwing.get_future();
    ffrt::submit([task = std::make_shared<ffrt::packaged_task<int()>>(std::move(throwing))] { (*task)(); });
    EXPECT_THROW(failed.get(), std::runtime_error);
    EXPECT_FALSE(failed.valid());

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

TEST(FfrtPoolTest, WaitAndHandlesReturnOnlyAfterTheTasksRan)
{
    std::atomic<int> done {0};
    for (int i = 0; i < 20; ++i) {
        ffrt::submit([&done] { ++done; }, ffrt::task_attr().delay(20 * 1000));
    }
    ffrt::wait();
    EXPECT_EQ(done.load(), 20);
    ffrt::task_handle handle = ffrt::submit_h([&done] { ++done; }, ffrt::task_attr().delay(10 * 1000));
    ffrt_queue_wait(handle);
    EXPECT_EQ(done.load(), 21);
}

TEST(FfrtPoolDeathTest, ExceptionEscapingATaskEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            ffrt::submit([] { throw std::runtime_error("escaped from task"); });
            FfrtWaitIdle(SETTLE_TIMEOUT);
        },
        "escaped from task");
}

TEST(FfrtQueueTest, SerialQueueRunsOneTaskAtATimeInSubmissionOrder)
{
    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, "order", nullptr);
    std::vector<int> order;
    std::atomic<int> inFlight {0};
    std::atomic<int> maxInFlight {0};
    ffrt_task_handle_t last = nullptr;
    for (int i = 0; i < 100; ++i) {
        ffrt_task_handle_destroy(last);
        last = ffrt_queue_submit_h(queue, QueueFunction([&, i] {
            int now = ++inFlight;
            maxInFlight = std::max(maxInFlight.load(), now);
            order.push_back(i);
            std::this_thread::yield();
            --inFlight;
        }), nullptr);
        ASSERT_NE(last, nullptr);
    }
    ffrt_queue_wait(last);
    ffrt_task_handle_destroy(last);
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
    ffrt_queue_submit(queue, QueueFunction([&] {
        started.set_value();
        std::this_thread::sleep_for(200ms);
        finished = true;
    }), nullptr);
    ffrt_queue_submit(queue, QueueFunction([&ranPending, token] { ranPending = true; }), nullptr);
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
    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    std::atomic<bool> destroyed {false};
    std::atomic<bool> ranPending {false};
    ffrt_queue_submit(queue, QueueFunction([&, opened] {
        opened.wait();
        ffrt_queue_destroy(queue);
        destroyed = true;
    }), nullptr);
    ffrt_queue_submit(queue, QueueFunction([&ranPending] { ranPending = true; }), nullptr);
    gate.set_value();
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_TRUE(destroyed.load());
    EXPECT_FALSE(ranPending.load());
}

TEST(FfrtHostTest, IdleOnlyWhenNothingIsQueuedRunningOrDelayed)
{
    ASSERT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));
    EXPECT_TRUE(FfrtIsIdle());
    {
        BlockedQueue queue("idle");
        EXPECT_FALSE(FfrtIsIdle());
        EXPECT_FALSE(FfrtWaitIdle(20ms));
    }
    EXPECT_TRUE(FfrtWaitIdle(SETTLE_TIMEOUT));

    ffrt_queue_t queue = ffrt_queue_create(ffrt_queue_serial, "idle-delayed", nullptr);
    ffrt_task_attr_t attr;
    ffrt_task_attr_init(&attr);
    // What a negative delay in milliseconds turns into: due in the far future, never at once.
    ffrt_task_attr_set_delay(&attr, UINT64_MAX);
    ffrt_task_handle_t delayed = ffrt_queue_submit_h(queue, QueueFunction([] {}), &attr);
    ffrt_task_attr_destroy(&attr);
    EXPECT_FALSE(FfrtIsIdle());
    EXPECT_EQ(ffrt_queue_get_task_cnt(queue), 1U);
    EXPECT_EQ(ffrt_queue_cancel(delayed), 0);
    EXPECT_TRUE(FfrtIsIdle());
    ffrt_task_handle_destroy(delayed);
    ffrt_queue_destroy(queue);
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
        ffrt_task_handle_t handle = ffrt_queue_submit_h(queue, QueueFunction([&runs, token] { ++runs; }), nullptr);
        token.reset();
        EXPECT_EQ(handle, nullptr);
        EXPECT_TRUE(captured.expired());
        EXPECT_TRUE(FfrtIsIdle());
    }
    ffrt_task_handle_t handle = ffrt_queue_submit_h(queue, QueueFunction([&runs] { ++runs; }), nullptr);
    ASSERT_NE(handle, nullptr);
    ffrt_queue_wait(handle);
    ffrt_task_handle_destroy(handle);
    ffrt_queue_destroy(queue);
    EXPECT_EQ(runs.load(), 1);
}

} // namespace
