#include "ipc_host.h"

#include <unistd.h>

#include "ipc_host_access.h"
#include "ipc_thread_context.h"
#include "one_way_delivery.h"

namespace HostPlatform {
namespace {
// Token id layout read by the access-token kit: unique id in bits 0-19, type in bits 27-28,
// version in bits 29-31. The full token id keeps attributes in its upper half.
constexpr uint32_t TOKEN_UNIQUE_ID_MASK = 0xFFFFF;
constexpr uint32_t TOKEN_TYPE_SHIFT = 27;
constexpr uint32_t TOKEN_VERSION_SHIFT = 29;
constexpr uint32_t TOKEN_VERSION = 1;
constexpr uint32_t TOKEN_TYPE_HAP = 0;
constexpr uint32_t TOKEN_TYPE_NATIVE = 1;
constexpr uint64_t SYSTEM_APP_FLAG = 1ULL << 32;

CallerIdentity MakeIdentity(uint32_t tokenType, bool systemApp, pid_t uid)
{
    uint32_t tokenId = (TOKEN_VERSION << TOKEN_VERSION_SHIFT) | (tokenType << TOKEN_TYPE_SHIFT) |
        (static_cast<uint32_t>(uid) & TOKEN_UNIQUE_ID_MASK);
    uint64_t fullTokenId = tokenId | (systemApp ? SYSTEM_APP_FLAG : 0);
    return CallerIdentity {tokenId, fullTokenId, getpid(), uid};
}
} // namespace

CallerIdentity NativeCaller(pid_t uid)
{
    return MakeIdentity(TOKEN_TYPE_NATIVE, false, uid);
}

CallerIdentity SystemAppCaller(pid_t uid)
{
    return MakeIdentity(TOKEN_TYPE_HAP, true, uid);
}

CallerIdentity AppCaller(pid_t uid)
{
    return MakeIdentity(TOKEN_TYPE_HAP, false, uid);
}

CallerIdentity ProcessIdentity()
{
    return NativeCaller(static_cast<pid_t>(getuid()));
}

ScopedCallerIdentity::ScopedCallerIdentity(const CallerIdentity &identity)
    : previous_(OHOS::IpcThreadContext::SwapOutgoing(identity))
{
}

ScopedCallerIdentity::~ScopedCallerIdentity()
{
    OHOS::IpcThreadContext::SwapOutgoing(previous_);
}

void MarkObjectDead(const OHOS::sptr<OHOS::IRemoteObject> &object)
{
    OHOS::sptr<OHOS::IPCObjectStub> target = OHOS::IpcHostAccess::TargetOf(object);
    if (target != nullptr) {
        OHOS::IpcHostAccess::State(*target).MarkDead();
    }
}

OHOS::sptr<OHOS::IRemoteObject> MakeRemoteProxy(const OHOS::sptr<OHOS::IRemoteObject> &object)
{
    return OHOS::IpcHostAccess::RemoteView(object);
}

bool WaitOneWayDelivered(const OHOS::sptr<OHOS::IRemoteObject> &object, std::chrono::milliseconds timeout)
{
    OHOS::sptr<OHOS::IPCObjectStub> target = OHOS::IpcHostAccess::TargetOf(object);
    return target == nullptr || OHOS::OneWayDelivery::Get().WaitDelivered(target.GetRefPtr(), timeout);
}
} // namespace HostPlatform
