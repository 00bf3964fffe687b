#include "ipc_object_proxy.h"

#include "errors.h"
#include "ipc_host_access.h"
#include "ipc_object_stub.h"
#include "ipc_types.h"
#include "one_way_delivery.h"
#include "synchronous_call.h"

namespace OHOS {
IPCObjectProxy::IPCObjectProxy(const sptr<IPCObjectStub> &target)
    : IRemoteObject(target->GetObjectDescriptor()), target_(target)
{
}

IPCObjectProxy::~IPCObjectProxy()
{
    IpcHostAccess::State(*target_).RemoveProxy(this);
}

int IPCObjectProxy::SendRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option)
{
    if (IsObjectDead()) {
        return ERR_DEAD_OBJECT;
    }
    if (code != DUMP_TRANSACTION && code > MAX_TRANSACTION_ID) {
        return IPC_PROXY_INVALID_CODE_ERR;
    }
    std::unique_ptr<IpcTransaction> transaction = IpcTransaction::Make(target_, code, data, option);
    if (transaction == nullptr) {
        return IPC_PROXY_WRITE_PARCEL_ERR;
    }
    reply.Reset();
    if ((static_cast<uint32_t>(option.GetFlags()) & MessageOption::TF_ASYNC) != 0) {
        return OneWayDelivery::Get().Post(std::move(transaction));
    }
    return SynchronousCall::Send(std::move(transaction), reply, option.GetWaitTime());
}

bool IPCObjectProxy::IsObjectDead() const
{
    return IpcHostAccess::State(*target_).IsDead();
}

int IPCObjectProxy::Dump(int fd, const std::vector<std::u16string> &args)
{
    MessageParcel data;
    MessageParcel reply;
    MessageOption option;
    if (!data.WriteFileDescriptor(fd) || !data.WriteString16Vector(args)) {
        return IPC_PROXY_WRITE_PARCEL_ERR;
    }
    return SendRequest(DUMP_TRANSACTION, data, reply, option);
}

bool IPCObjectProxy::AddDeathRecipient(const sptr<DeathRecipient> &recipient)
{
    return recipient != nullptr && IpcHostAccess::State(*target_).AddDeathRecipient(this, recipient);
}

bool IPCObjectProxy::RemoveDeathRecipient(const sptr<DeathRecipient> &recipient)
{
    return recipient != nullptr && IpcHostAccess::State(*target_).RemoveDeathRecipient(this, recipient);
}
} // namespace OHOS
