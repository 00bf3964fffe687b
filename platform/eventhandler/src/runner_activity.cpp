#include "runner_activity.h"

namespace OHOS {
namespace AppExecFwk {
RunnerActivity &RunnerActivity::Instance()
{
    // Never destroyed: runner threads may still report during static destruction.
    static RunnerActivity *instance = new RunnerActivity();
    return *instance;
}

void RunnerActivity::Add(size_t count)
{
    std::lock_guard<std::mutex> lock(mutex_);
    busy_ += count;
}

void RunnerActivity::Remove(size_t count)
{
    if (count == 0) {
        return;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    busy_ -= count;
    if (busy_ == 0) {
        idle_.notify_all();
    }
}

bool RunnerActivity::WaitIdle(std::chrono::milliseconds timeout)
{
    std::unique_lock<std::mutex> lock(mutex_);
    return idle_.wait_for(lock, timeout, [this] { return busy_ == 0; });
}
} // namespace AppExecFwk
} // namespace OHOS
