#ifndef OHOS_IPC_IPC_TRANSACTION_H
#define OHOS_IPC_IPC_TRANSACTION_H

#include <cstdint>
#include <memory>

#include "ipc_object_stub.h"
#include "ipc_thread_context.h"
#include "message_option.h"
#include "message_parcel.h"

namespace OHOS {
// One transaction as the callee process receives it: its own copy of the data, as the driver
// would make, and the identity of the thread that sent it. It may be handled on any thread.
class IpcTransaction {
public:
    // Null when the data cannot be copied.
    static std::unique_ptr<IpcTransaction> Make(const sptr<IPCObjectStub> &target, uint32_t code, MessageParcel &data,
        const MessageOption &option);

    // Sent from this thread, with no data yet; Make is the usual way.
    IpcTransaction(const sptr<IPCObjectStub> &target, uint32_t code, const MessageOption &option);

    const IPCObjectStub *Target() const;
    // Runs the stub under the sender's identity, on the calling thread.
    int Deliver(MessageParcel &reply);

private:
    const sptr<IPCObjectStub> target_;
    const uint32_t code_;
    MessageOption option_;
    const IpcThreadContext::Identity caller_;
    MessageParcel data_;
};
} // namespace OHOS

#endif // OHOS_IPC_IPC_TRANSACTION_H
