#include "one_way_delivery.h"

#include "ipc_thread_pool.h"
#include "ipc_types.h"

namespace OHOS {
namespace {
thread_local const IPCObjectStub *t_servedTarget = nullptr;
} // namespace

OneWayDelivery &OneWayDelivery::Get()
{
    // Never destroyed: lane threads may still be running when static destructors run.
    static OneWayDelivery *instance = new OneWayDelivery();
    return *instance;
}

int OneWayDelivery::Post(std::unique_ptr<IpcTransaction> transaction)
{
    const IPCObjectStub *target = transaction->Target();
    std::lock_guard<std::mutex> lock(mutex_);
    auto [lane, opened] = lanes_.try_emplace(target);
    lane->second.push_back(std::move(transaction));
    if (!opened) {
        return ERR_NONE;
    }
    if (!IpcThreadPool::Get().Run([this, target] { Serve(target); })) {
        lanes_.erase(lane);
        return IPC_STUB_INVOKE_THREAD_ERR;
    }
    return ERR_NONE;
}

void OneWayDelivery::Serve(const IPCObjectStub *target)
{
    t_servedTarget = target;
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        Lane &lane = lanes_.at(target);
        if (lane.empty()) {
            // The pool thread goes on to other work, no longer this lane's.
            t_servedTarget = nullptr;
            lanes_.erase(target);
            laneClosed_.notify_all();
            return;
        }
        std::unique_ptr<IpcTransaction> transaction = std::move(lane.front());
        lane.pop_front();
        lock.unlock();
        {
            // Nobody reads a one-way call's reply; the stub still gets one to write to.
            MessageParcel reply;
            transaction->Deliver(reply);
            transaction.reset();
        }
        lock.lock();
    }
}

bool OneWayDelivery::WaitDelivered(const IPCObjectStub *target, std::chrono::milliseconds timeout)
{
    if (t_servedTarget == target) {
        return false;
    }
    std::unique_lock<std::mutex> lock(mutex_);
    return laneClosed_.wait_for(lock, timeout, [this, target] { return lanes_.count(target) == 0; });
}
} // namespace OHOS
