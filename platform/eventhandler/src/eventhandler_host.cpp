#include "eventhandler_host.h"

#include "runner_activity.h"

namespace HostPlatform {
bool EventRunnersWaitIdle(std::chrono::milliseconds timeout)
{
    return OHOS::AppExecFwk::RunnerActivity::Instance().WaitIdle(timeout);
}
} // namespace HostPlatform
