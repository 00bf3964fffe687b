#include "ipc_thread_context.h"

namespace OHOS {
namespace {
thread_local std::optional<IpcThreadContext::Identity> t_outgoing;
thread_local std::optional<IpcThreadContext::Identity> t_incoming;
} // namespace

IpcThreadContext::Identity IpcThreadContext::Outgoing()
{
    return t_outgoing ? *t_outgoing : HostPlatform::ProcessIdentity();
}

std::optional<IpcThreadContext::Identity> IpcThreadContext::SwapOutgoing(const std::optional<Identity> &identity)
{
    std::optional<Identity> previous = t_outgoing;
    t_outgoing = identity;
    return previous;
}

std::optional<IpcThreadContext::Identity> IpcThreadContext::Incoming()
{
    return t_incoming;
}

std::optional<IpcThreadContext::Identity> IpcThreadContext::SwapIncoming(const std::optional<Identity> &identity)
{
    std::optional<Identity> previous = t_incoming;
    t_incoming = identity;
    return previous;
}

IpcThreadContext::Identity IpcThreadContext::Calling()
{
    return t_incoming ? *t_incoming : Outgoing();
}

IpcThreadContext::DispatchScope::DispatchScope(const Identity &caller)
    : previousIncoming_(SwapIncoming(caller)), previousOutgoing_(SwapOutgoing(std::nullopt))
{
}

IpcThreadContext::DispatchScope::~DispatchScope()
{
    SwapOutgoing(previousOutgoing_);
    SwapIncoming(previousIncoming_);
}
} // namespace OHOS
