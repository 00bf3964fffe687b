#include "message_option.h"

namespace OHOS {
MessageOption::MessageOption(int flags, int waitTime) : flags_(static_cast<uint32_t>(flags)), waitTime_(waitTime) {}

void MessageOption::SetFlags(int flags)
{
    flags_ |= static_cast<uint32_t>(flags);
}

int MessageOption::GetFlags() const
{
    return static_cast<int>(flags_);
}

void MessageOption::SetWaitTime(int waitTime)
{
    waitTime_ = waitTime > 0 ? waitTime : TF_WAIT_TIME;
}

int MessageOption::GetWaitTime() const
{
    return waitTime_;
}
} // namespace OHOS
