#include "eventhandler_host.h"

#include "runner_activity.h"

namespace HostPlatform {
bool EventRunnersIdle()
{
    return OHOS::AppExecFwk::RunnerActivity::Instance().IsIdle();
}

bool EventRunnersWaitIdle(std::chrono::milliseconds timeout)
{
    return OHOS::AppExecFwk::RunnerActivity::Instance().WaitIdle(timeout);
}
} // namespace HostPlatform
