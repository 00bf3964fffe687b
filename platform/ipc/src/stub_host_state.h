#ifndef OHOS_IPC_STUB_HOST_STATE_H
#define OHOS_IPC_STUB_HOST_STATE_H

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

#include "iremote_object.h"

namespace OHOS {
// What the driver knows about a stub on the host: whether its process has died and
// which proxies asked to hear about that.
class StubHostState {
public:
    bool IsDead() const;
    // Marks the stub dead once and runs the recipients registered until then.
    void MarkDead();

    bool AddDeathRecipient(const wptr<IRemoteObject> &proxy, const sptr<IRemoteObject::DeathRecipient> &recipient);
    bool RemoveDeathRecipient(const IRemoteObject *proxy, const sptr<IRemoteObject::DeathRecipient> &recipient);
    void RemoveProxy(const IRemoteObject *proxy);

private:
    using Watch = std::pair<wptr<IRemoteObject>, sptr<IRemoteObject::DeathRecipient>>;

    std::atomic<bool> dead_ {false};
    std::mutex mutex_;
    std::vector<Watch> watches_;
};
} // namespace OHOS

#endif // OHOS_IPC_STUB_HOST_STATE_H
