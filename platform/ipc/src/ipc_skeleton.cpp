#include "ipc_skeleton.h"

#include "ipc_thread_context.h"

namespace OHOS {
pid_t IPCSkeleton::GetCallingUid()
{
    return IpcThreadContext::Calling().uid;
}

uint32_t IPCSkeleton::GetCallingTokenID()
{
    return IpcThreadContext::Calling().tokenId;
}

uint64_t IPCSkeleton::GetCallingFullTokenID()
{
    return IpcThreadContext::Calling().fullTokenId;
}
} // namespace OHOS
