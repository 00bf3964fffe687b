#include "ipc_skeleton.h"

#include <condition_variable>
#include <mutex>
#include <sstream>

#include "ipc_thread_context.h"
#include "ipc_types.h"

namespace OHOS {
namespace {
constexpr const char *LOCAL_DEVICE_ID = "host-local-device";
// ResetCallingIdentity's token: whether a caller was being served, and who.
constexpr char DISPATCHING = 'I';
constexpr char NOT_DISPATCHING = 'O';

struct WorkThreadGate {
    std::mutex mutex;
    std::condition_variable stopped;
    bool stopRequested = false;
};

WorkThreadGate &Gate()
{
    static WorkThreadGate *gate = new WorkThreadGate();
    return *gate;
}

struct ContextObjectSlot {
    std::mutex mutex;
    sptr<IRemoteObject> object;
};

ContextObjectSlot &ContextObject()
{
    static ContextObjectSlot *slot = new ContextObjectSlot();
    return *slot;
}

std::string Encode(const std::optional<IpcThreadContext::Identity> &identity)
{
    if (!identity) {
        return std::string(1, NOT_DISPATCHING);
    }
    std::ostringstream out;
    out << DISPATCHING << ' ' << identity->tokenId << ' ' << identity->fullTokenId << ' ' << identity->pid << ' '
        << identity->uid;
    return out.str();
}

bool Decode(const std::string &text, std::optional<IpcThreadContext::Identity> &identity)
{
    if (text == std::string(1, NOT_DISPATCHING)) {
        identity.reset();
        return true;
    }
    std::istringstream in(text);
    char kind = 0;
    IpcThreadContext::Identity decoded{};
    if (!(in >> kind >> decoded.tokenId >> decoded.fullTokenId >> decoded.pid >> decoded.uid) || kind != DISPATCHING) {
        return false;
    }
    in >> std::ws;
    if (!in.eof()) {
        return false;
    }
    identity = decoded;
    return true;
}
} // namespace

bool IPCSkeleton::SetMaxWorkThreadNum(int maxThreadNum)
{
    return maxThreadNum > 0;
}

// A service host's main thread parks here on the device; on the host it waits until
// StopWorkThread is called.
void IPCSkeleton::JoinWorkThread()
{
    WorkThreadGate &gate = Gate();
    std::unique_lock<std::mutex> lock(gate.mutex);
    gate.stopped.wait(lock, [&gate] { return gate.stopRequested; });
}

void IPCSkeleton::StopWorkThread()
{
    WorkThreadGate &gate = Gate();
    {
        std::lock_guard<std::mutex> lock(gate.mutex);
        gate.stopRequested = true;
    }
    gate.stopped.notify_all();
}

pid_t IPCSkeleton::GetCallingPid()
{
    return IpcThreadContext::Calling().pid;
}

pid_t IPCSkeleton::GetCallingRealPid()
{
    return IpcThreadContext::Calling().pid;
}

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

// Calls are never relayed on the host, so there is no first caller distinct from the caller.
uint32_t IPCSkeleton::GetFirstTokenID()
{
    return 0;
}

uint64_t IPCSkeleton::GetFirstFullTokenID()
{
    return 0;
}

uint64_t IPCSkeleton::GetSelfTokenID()
{
    return IpcThreadContext::Outgoing().fullTokenId;
}

std::string IPCSkeleton::GetLocalDeviceID()
{
    return LOCAL_DEVICE_ID;
}

std::string IPCSkeleton::GetCallingDeviceID()
{
    return LOCAL_DEVICE_ID;
}

bool IPCSkeleton::IsLocalCalling()
{
    return true;
}

sptr<IRemoteObject> IPCSkeleton::GetContextObject()
{
    ContextObjectSlot &slot = ContextObject();
    std::lock_guard<std::mutex> lock(slot.mutex);
    return slot.object;
}

bool IPCSkeleton::SetContextObject(sptr<IRemoteObject> &object)
{
    if (object == nullptr) {
        return false;
    }
    ContextObjectSlot &slot = ContextObject();
    std::lock_guard<std::mutex> lock(slot.mutex);
    slot.object = object;
    return true;
}

int IPCSkeleton::FlushCommands(IRemoteObject * /* object */)
{
    return ERR_NONE; // nothing is ever queued on the host
}

std::string IPCSkeleton::ResetCallingIdentity()
{
    return Encode(IpcThreadContext::SwapIncoming(std::nullopt));
}

bool IPCSkeleton::SetCallingIdentity(std::string &identity, bool /* flag */)
{
    std::optional<IpcThreadContext::Identity> decoded;
    if (!Decode(identity, decoded)) {
        return false;
    }
    IpcThreadContext::SwapIncoming(decoded);
    return true;
}
} // namespace OHOS
