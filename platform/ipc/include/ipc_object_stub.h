#ifndef OHOS_IPC_IPC_OBJECT_STUB_H
#define OHOS_IPC_IPC_OBJECT_STUB_H

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "iremote_object.h"
#include "message_option.h"
#include "message_parcel.h"

namespace OHOS {
class StubHostState;

class IPCObjectStub : public IRemoteObject {
public:
    explicit IPCObjectStub(std::u16string descriptor = std::u16string(), bool serialInvokeFlag = false);
    ~IPCObjectStub() override;

    bool IsProxyObject() const override { return false; }

    int Dump(int fd, const std::vector<std::u16string> &args) override;
    virtual int OnRemoteRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option);
    int SendRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option) override;

    // A local object has no remote process whose death could be observed.
    bool AddDeathRecipient(const sptr<DeathRecipient> &recipient) override;
    bool RemoveDeathRecipient(const sptr<DeathRecipient> &recipient) override;

    virtual int OnRemoteDump(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option);

private:
    friend class IpcHostAccess;

    bool serialInvokeFlag_;
    std::recursive_mutex serialRecursiveMutex_;
    // Host emulation: liveness of the owning "process" and the proxies watching it.
    std::unique_ptr<StubHostState> hostState_;
};
} // namespace OHOS

#endif // OHOS_IPC_IPC_OBJECT_STUB_H
