#include "ipc_transaction.h"

#include <algorithm>

#include "errors.h"
#include "ipc_host_access.h"

namespace OHOS {
IpcTransaction::IpcTransaction(const sptr<IPCObjectStub> &target, uint32_t code, const MessageOption &option)
    : target_(target), code_(code), option_(option), caller_(IpcThreadContext::Outgoing())
{
}

std::unique_ptr<IpcTransaction> IpcTransaction::Make(const sptr<IPCObjectStub> &target, uint32_t code,
    MessageParcel &data, const MessageOption &option)
{
    auto transaction = std::make_unique<IpcTransaction>(target, code, option);
    transaction->data_.SetMaxCapacity(std::max(transaction->data_.GetMaxCapacity(), data.GetDataSize()));
    if (!transaction->data_.Append(data)) {
        return nullptr;
    }
    return transaction;
}

const IPCObjectStub *IpcTransaction::Target() const
{
    return target_.GetRefPtr();
}

int IpcTransaction::Deliver(MessageParcel &reply)
{
    // A process that died with calls still queued for it never handles them.
    if (IpcHostAccess::State(*target_).IsDead()) {
        return ERR_DEAD_OBJECT;
    }
    IpcThreadContext::DispatchScope scope(caller_);
    return target_->SendRequest(code_, data_, reply, option_);
}
} // namespace OHOS
