#include <future>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "hilog_host.h"
#include "vorn_thread.h"

using namespace OHOS::Vorn;
using Pool = std::shared_ptr<AsyncTaskExecutor>;

namespace {
// Lives from before the first pool is made, so the creation lines are seen whatever test runs first.
HostPlatform::LogCapture g_processLog;
} // namespace

TEST(VornThreadTest, RacingCallersShareOnePoolPerType)
{
    constexpr int CALLERS = 16;
    std::promise<void> go;
    std::shared_future<void> start = go.get_future().share();
    std::vector<Pool> http(CALLERS);
    std::vector<Pool> binder(CALLERS);
    std::vector<std::thread> callers;
    for (int i = 0; i < CALLERS; ++i) {
        callers.emplace_back([&, i] {
            start.wait();
            // Half the callers ask for the binder pool first, so both slots are raced for.
            if (i % 2 == 0) {
                binder[i] = VornThread::GetThreadPool(BINDER_POOL);
            }
            http[i] = VornThread::GetThreadPool(HTTP_POOL);
            binder[i] = VornThread::GetThreadPool(BINDER_POOL);
        });
    }
    go.set_value();
    for (std::thread &caller : callers) {
        caller.join();
    }
    ASSERT_NE(http[0], nullptr);
    ASSERT_NE(binder[0], nullptr);
    EXPECT_NE(http[0], binder[0]);
    for (int i = 1; i < CALLERS; ++i) {
        EXPECT_EQ(http[i], http[0]);
        EXPECT_EQ(binder[i], binder[0]);
    }
    EXPECT_EQ(g_processLog.Count("created. mode:NORMAL_SUBMIT. name:vorn-http-thread-pool"), 1U);
    EXPECT_EQ(g_processLog.Count("created. mode:NORMAL_SUBMIT. name:vorn-binder-thread-pool"), 1U);
}
