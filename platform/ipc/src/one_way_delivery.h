#ifndef OHOS_IPC_ONE_WAY_DELIVERY_H
#define OHOS_IPC_ONE_WAY_DELIVERY_H

#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>

#include "ipc_transaction.h"

namespace OHOS {
// The callee side of one-way calls. The driver hands an object its one-way calls one at a time,
// in the order they were sent; calls to different objects do not wait for each other. Each
// object with calls pending has a lane served by one pool thread until the lane is empty.
class OneWayDelivery {
public:
    static OneWayDelivery &Get();

    // Queues the call behind the ones already sent to the same object; ERR_NONE when queued.
    int Post(std::unique_ptr<IpcTransaction> transaction);
    // Waits until the calls queued for `target` so far have all been handled, or the timeout
    // passed. Never waits on the thread serving that target's lane, which would wait for itself.
    bool WaitDelivered(const IPCObjectStub *target, std::chrono::milliseconds timeout);

private:
    using Lane = std::deque<std::unique_ptr<IpcTransaction>>;

    OneWayDelivery() = default;
    void Serve(const IPCObjectStub *target);

    std::mutex mutex_;
    std::condition_variable laneClosed_;
    // A lane stays here while its thread still handles a call, so its presence means "busy".
    std::map<const IPCObjectStub *, Lane> lanes_;
};
} // namespace OHOS

#endif // OHOS_IPC_ONE_WAY_DELIVERY_H
