#ifndef HOST_PLATFORM_IPC_HOST_H
#define HOST_PLATFORM_IPC_HOST_H

// Host-only controls of the emulated IPC (for tests and tools, never the service). The host
// runs every "process" inside this one: a caller's identity is a per-thread setting, and a
// remote object is a proxy that forwards to a stub of this process.

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>

#include "iremote_object.h"
#include "refbase.h"

namespace HostPlatform {
struct CallerIdentity {
    uint32_t tokenId;
    uint64_t fullTokenId;
    pid_t pid;
    pid_t uid;
};

// Identities with the token bits the access-token kit reads (type in bits 27-28 of the token
// id, system-app flag in bit 32 of the full token id). The pid is this process's.
CallerIdentity NativeCaller(pid_t uid);
CallerIdentity SystemAppCaller(pid_t uid);
CallerIdentity AppCaller(pid_t uid);
// What a thread carries unless told otherwise: a native token with getuid() and getpid().
CallerIdentity ProcessIdentity();

// Sets the identity that this thread's outgoing calls carry until destruction. Other threads
// are unaffected. Scopes nest; destroy them on the thread that created them, innermost first.
class ScopedCallerIdentity {
public:
    explicit ScopedCallerIdentity(const CallerIdentity &identity);
    ~ScopedCallerIdentity();
    ScopedCallerIdentity(const ScopedCallerIdentity &) = delete;
    ScopedCallerIdentity &operator=(const ScopedCallerIdentity &) = delete;

private:
    std::optional<CallerIdentity> previous_;
};

// Lets the process that owns `object` (a stub, or the stub behind a proxy) die: every proxy to
// it reports IsObjectDead(), transactions fail with ERR_DEAD_OBJECT and death recipients run.
void MarkObjectDead(const OHOS::sptr<OHOS::IRemoteObject> &object);

// What another process would hold for `object`: a new proxy to the stub (or to the stub behind
// a proxy). Objects that are neither come back unchanged.
OHOS::sptr<OHOS::IRemoteObject> MakeRemoteProxy(const OHOS::sptr<OHOS::IRemoteObject> &object);

// Waits until the one-way calls sent so far to `object` (a stub, or the stub behind a proxy)
// have all been handled, or the timeout passed; returns whether they have. Lets a test look at
// what a callee received without guessing how long delivery takes. False at once when called
// while handling a one-way call to that same object.
bool WaitOneWayDelivered(const OHOS::sptr<OHOS::IRemoteObject> &object, std::chrono::milliseconds timeout);
} // namespace HostPlatform

#endif // HOST_PLATFORM_IPC_HOST_H
