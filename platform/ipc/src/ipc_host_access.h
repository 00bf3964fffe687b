#ifndef OHOS_IPC_IPC_HOST_ACCESS_H
#define OHOS_IPC_IPC_HOST_ACCESS_H

#include "ipc_object_proxy.h"
#include "ipc_object_stub.h"
#include "stub_host_state.h"

namespace OHOS {
// The emulation's view behind the public classes: which stub an object stands for, and how a
// new proxy to it is made.
class IpcHostAccess {
public:
    static StubHostState &State(IPCObjectStub &stub);
    // The stub itself, the stub behind a proxy, or null for any other kind of object.
    static sptr<IPCObjectStub> TargetOf(const sptr<IRemoteObject> &object);
    // What a receiving process holds for `object`; see HostPlatform::MakeRemoteProxy.
    static sptr<IRemoteObject> RemoteView(const sptr<IRemoteObject> &object);
};
} // namespace OHOS

#endif // OHOS_IPC_IPC_HOST_ACCESS_H
