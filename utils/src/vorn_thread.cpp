#include "vorn_thread.h"

#include "ffrt_executor.h"

namespace OHOS {
namespace Vorn {
namespace {
constexpr const char *HTTP_POOL_NAME = "vorn-http-thread-pool";
constexpr const char *BINDER_POOL_NAME = "vorn-binder-thread-pool";
} // namespace

std::mutex VornThread::poolLock_;
std::shared_ptr<AsyncTaskExecutor> VornThread::httpPool_;
std::shared_ptr<AsyncTaskExecutor> VornThread::binderPool_;

std::shared_ptr<AsyncTaskExecutor> VornThread::GetThreadPool(VornThreadPoolType type)
{
    std::lock_guard<std::mutex> lock(poolLock_);
    const bool isHttp = type == HTTP_POOL;
    std::shared_ptr<AsyncTaskExecutor> &slot = isHttp ? httpPool_ : binderPool_;
    if (!slot) {
        slot = std::make_shared<FFRTExecutor>(isHttp ? HTTP_POOL_NAME : BINDER_POOL_NAME,
            FFRTExecutor::Mode::NORMAL_SUBMIT);
    }
    return slot;
}

std::vector<VornThread::PoolStatus> VornThread::PoolStatuses()
{
    std::lock_guard<std::mutex> lock(poolLock_);
    std::vector<PoolStatus> statuses;
    for (const auto &[pool, name] :
        {std::make_pair(binderPool_, BINDER_POOL_NAME), std::make_pair(httpPool_, HTTP_POOL_NAME)}) {
        auto executor = std::dynamic_pointer_cast<FFRTExecutor>(pool);
        if (executor != nullptr) {
            statuses.push_back({name, executor->TasksRunning(), executor->TasksWaiting()});
        }
    }
    return statuses;
}
} // namespace Vorn
} // namespace OHOS
