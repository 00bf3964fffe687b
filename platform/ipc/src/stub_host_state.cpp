#include "stub_host_state.h"

#include <algorithm>
#include <iterator>

namespace OHOS {
bool StubHostState::IsDead() const
{
    return dead_.load(std::memory_order_acquire);
}

void StubHostState::MarkDead()
{
    std::vector<Watch> watches;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (dead_.exchange(true, std::memory_order_acq_rel)) {
            return;
        }
        watches.swap(watches_);
    }
    // Outside the lock: a recipient may well touch the proxy it watched.
    for (const auto &[proxy, recipient] : watches) {
        recipient->OnRemoteDied(proxy);
    }
}

bool StubHostState::AddDeathRecipient(const wptr<IRemoteObject> &proxy,
    const sptr<IRemoteObject::DeathRecipient> &recipient)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (dead_.load(std::memory_order_relaxed)) {
        return false;
    }
    watches_.emplace_back(proxy, recipient);
    return true;
}

bool StubHostState::RemoveDeathRecipient(const IRemoteObject *proxy,
    const sptr<IRemoteObject::DeathRecipient> &recipient)
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = std::find_if(watches_.begin(), watches_.end(), [proxy, &recipient](const Watch &watch) {
        return watch.first.GetRefPtr() == proxy && watch.second == recipient;
    });
    if (it == watches_.end()) {
        return false;
    }
    watches_.erase(it);
    return true;
}

void StubHostState::RemoveProxy(const IRemoteObject *proxy)
{
    std::vector<Watch> removed; // released outside the lock
    std::lock_guard<std::mutex> lock(mutex_);
    auto firstRemoved = std::stable_partition(watches_.begin(), watches_.end(),
        [proxy](const Watch &watch) { return watch.first.GetRefPtr() != proxy; });
    std::move(firstRemoved, watches_.end(), std::back_inserter(removed));
    watches_.erase(firstRemoved, watches_.end());
}
} // namespace OHOS
