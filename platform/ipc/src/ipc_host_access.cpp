#include "ipc_host_access.h"

namespace OHOS {
StubHostState &IpcHostAccess::State(IPCObjectStub &stub)
{
    return *stub.hostState_;
}

sptr<IPCObjectStub> IpcHostAccess::TargetOf(const sptr<IRemoteObject> &object)
{
    if (auto *proxy = dynamic_cast<IPCObjectProxy *>(object.GetRefPtr())) {
        return proxy->target_;
    }
    return dynamic_cast<IPCObjectStub *>(object.GetRefPtr());
}

sptr<IRemoteObject> IpcHostAccess::RemoteView(const sptr<IRemoteObject> &object)
{
    sptr<IPCObjectStub> target = TargetOf(object);
    if (target == nullptr) {
        return object;
    }
    return new IPCObjectProxy(target);
}
} // namespace OHOS
