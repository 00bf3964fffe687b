#ifndef OHOS_IPC_SYNCHRONOUS_CALL_H
#define OHOS_IPC_SYNCHRONOUS_CALL_H

#include <condition_variable>
#include <memory>
#include <mutex>

#include "ipc_transaction.h"
#include "message_parcel.h"

namespace OHOS {
// A synchronous call as two processes see it: the callee handles it on one of its IPC threads,
// while the caller waits for the reply no longer than the option's wait time. A callee
// that takes longer goes on undisturbed; its late reply is dropped.
class SynchronousCall {
public:
    SynchronousCall() = default;

    // The stub's result, its reply appended to `reply`; or RPC_BASE_INVOKER_WAIT_REPLY_ERR once
    // `waitSeconds` (the default wait time if not positive) passed without a reply.
    static int Send(std::unique_ptr<IpcTransaction> transaction, MessageParcel &reply, int waitSeconds);

private:
    static void Handle(const std::shared_ptr<SynchronousCall> &call, std::shared_ptr<IpcTransaction> &transaction);

    std::mutex mutex_;
    std::condition_variable answered_;
    bool done_ = false;
    int result_ = 0;
    // Written by the callee before done_ is set, read by the caller only after.
    MessageParcel reply_;
};
} // namespace OHOS

#endif // OHOS_IPC_SYNCHRONOUS_CALL_H
