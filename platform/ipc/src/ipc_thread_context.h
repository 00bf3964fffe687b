#ifndef OHOS_IPC_IPC_THREAD_CONTEXT_H
#define OHOS_IPC_IPC_THREAD_CONTEXT_H

#include <optional>

#include "ipc_host.h"

namespace OHOS {
// The per-thread identities of the emulated IPC: the one this thread's outgoing calls carry,
// and the caller of the transaction this thread is dispatching, if any.
class IpcThreadContext {
public:
    using Identity = HostPlatform::CallerIdentity;

    static Identity Outgoing();
    // Replaces this thread's outgoing identity (nullopt: the process identity); returns the old one.
    static std::optional<Identity> SwapOutgoing(const std::optional<Identity> &identity);

    static std::optional<Identity> Incoming();
    static std::optional<Identity> SwapIncoming(const std::optional<Identity> &identity);

    // The caller being served, or this thread itself outside of a transaction.
    static Identity Calling();

    // For the duration of one dispatched transaction: the stub sees `caller`, and calls the stub
    // makes go out under the identity of its own process.
    class DispatchScope {
    public:
        explicit DispatchScope(const Identity &caller);
        ~DispatchScope();
        DispatchScope(const DispatchScope &) = delete;
        DispatchScope &operator=(const DispatchScope &) = delete;

    private:
        std::optional<Identity> previousIncoming_;
        std::optional<Identity> previousOutgoing_;
    };
};
} // namespace OHOS

#endif // OHOS_IPC_IPC_THREAD_CONTEXT_H
