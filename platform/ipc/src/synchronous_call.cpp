#include "synchronous_call.h"

#include <algorithm>
#include <chrono>

#include "ipc_thread_pool.h"
#include "ipc_types.h"
#include "message_option.h"

namespace OHOS {
int SynchronousCall::Send(std::unique_ptr<IpcTransaction> transaction, MessageParcel &reply, int waitSeconds)
{
    auto call = std::make_shared<SynchronousCall>();
    // Shared only so the work can be copied into the pool; the callee is its one owner.
    std::shared_ptr<IpcTransaction> shared = std::move(transaction);
    if (!IpcThreadPool::Get().Run([call, shared = std::move(shared)]() mutable { Handle(call, shared); })) {
        return IPC_STUB_INVOKE_THREAD_ERR;
    }
    const std::chrono::seconds wait(waitSeconds > 0 ? waitSeconds : MessageOption::TF_WAIT_TIME);
    std::unique_lock<std::mutex> lock(call->mutex_);
    if (!call->answered_.wait_for(lock, wait, [&call] { return call->done_; })) {
        return RPC_BASE_INVOKER_WAIT_REPLY_ERR;
    }
    reply.SetMaxCapacity(std::max(reply.GetMaxCapacity(), call->reply_.GetDataSize()));
    if (!reply.Append(call->reply_)) {
        return ERR_INVALID_REPLY;
    }
    return call->result_;
}

void SynchronousCall::Handle(const std::shared_ptr<SynchronousCall> &call, std::shared_ptr<IpcTransaction> &transaction)
{
    int result = transaction->Deliver(call->reply_);
    // The stub and the request data are let go before the caller learns of the reply, as the
    // callee process would have let go of them by then.
    transaction.reset();
    {
        std::lock_guard<std::mutex> lock(call->mutex_);
        call->result_ = result;
        call->done_ = true;
    }
    // Woken after unlocking, so that the caller does not at once block on the lock again; the
    // call is shared, so it outlives a caller that returns first.
    call->answered_.notify_all();
}
} // namespace OHOS
