#ifndef OHOS_IPC_IPC_OBJECT_PROXY_H
#define OHOS_IPC_IPC_OBJECT_PROXY_H

#include <string>
#include <vector>

#include "iremote_object.h"
#include "message_option.h"
#include "message_parcel.h"

namespace OHOS {
class IPCObjectStub;

// What a process holds for an object that lives in another process. On the host the "other
// process" is a stub in this one: a transaction copies the parcels as the driver would and
// runs the stub on a thread standing for the callee's IPC thread, under the caller's identity.
// - Synchronous calls wait for the reply at most the option's wait time (seconds). Past it the
//   caller gets RPC_BASE_INVOKER_WAIT_REPLY_ERR, the invoker's "no reply in time" code, and an
//   empty reply; the callee carries on and its late reply is dropped.
// - One-way calls (TF_ASYNC) return ERR_NONE and an empty reply at once. The callee handles
//   them later, one at a time and in order per target object; one that blocks delays only the
//   later one-way calls to that same object.
class IPCObjectProxy : public IRemoteObject {
public:
    ~IPCObjectProxy() override;

    int SendRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option) override;
    bool IsProxyObject() const override { return true; }
    bool IsObjectDead() const override;
    int Dump(int fd, const std::vector<std::u16string> &args) override;
    bool AddDeathRecipient(const sptr<DeathRecipient> &recipient) override;
    bool RemoveDeathRecipient(const sptr<DeathRecipient> &recipient) override;

private:
    friend class IpcHostAccess;
    explicit IPCObjectProxy(const sptr<IPCObjectStub> &target);

    const sptr<IPCObjectStub> target_;
};
} // namespace OHOS

#endif // OHOS_IPC_IPC_OBJECT_PROXY_H
