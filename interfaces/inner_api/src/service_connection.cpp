#include "service_connection.h"

#include <algorithm>

#include "iservice_registry.h"
#include "vorn_log.h"
#include "vorn_sa_id.h"

namespace OHOS {
namespace Vorn {
// Holds the connection weakly: a client gone before its service died has nothing to reset.
class ServiceConnection::DeathRecipient : public IRemoteObject::DeathRecipient {
public:
    explicit DeathRecipient(std::weak_ptr<ServiceConnection> connection) : connection_(std::move(connection)) {}

    void OnRemoteDied(const wptr<IRemoteObject> &object) override
    {
        if (auto connection = connection_.lock()) {
            connection->OnServiceDied(object.GetRefPtr());
        }
    }

private:
    const std::weak_ptr<ServiceConnection> connection_;
};

ServiceConnection::ServiceConnection(int32_t loadTimeoutSeconds) : loadTimeoutSeconds_(loadTimeoutSeconds) {}

ServiceConnection::~ServiceConnection()
{
    if (proxy_ != nullptr) {
        proxy_->AsObject()->RemoveDeathRecipient(recipient_);
    }
    for (const auto &entry : watched_) {
        entry.request->Close();
    }
}

sptr<IVornSAInterface> ServiceConnection::Get(uint64_t &generation)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (proxy_ != nullptr) {
            generation = generation_;
            return proxy_;
        }
    }
    sptr<IRemoteObject> remote = FindService();
    if (remote == nullptr) {
        return nullptr;
    }
    sptr<IVornSAInterface> proxy = iface_cast<IVornSAInterface>(remote);
    sptr<IRemoteObject::DeathRecipient> recipient = new DeathRecipient(weak_from_this());
    if (proxy == nullptr || !remote->AddDeathRecipient(recipient)) {
        VORN_LOGE("VornClient cannot watch the service, it may have died");
        return nullptr;
    }
    std::unique_lock<std::mutex> lock(mutex_);
    // The recipient may have run before the lock was taken, finding nothing to reset; the
    // object's own dead flag, set before recipients run, catches that case.
    if (proxy_ == nullptr && !remote->IsObjectDead()) {
        proxy_ = proxy;
        recipient_ = recipient;
        generation = ++generation_;
        return proxy_;
    }
    sptr<IVornSAInterface> current = proxy_;
    generation = generation_;
    lock.unlock();
    remote->RemoveDeathRecipient(recipient);
    return current;
}

sptr<IRemoteObject> ServiceConnection::FindService() const
{
    sptr<ISystemAbilityManager> manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (manager == nullptr) {
        VORN_LOGE("VornClient get system ability manager failed");
        return nullptr;
    }
    sptr<IRemoteObject> remote = manager->CheckSystemAbility(VORN_SA_ID);
    if (remote != nullptr) {
        return remote;
    }
    remote = manager->LoadSystemAbility(VORN_SA_ID, loadTimeoutSeconds_);
    if (remote == nullptr) {
        VORN_LOGE("VornClient load system ability %{public}d failed", VORN_SA_ID);
    }
    return remote;
}

void ServiceConnection::Watch(uint64_t generation, const std::shared_ptr<PendingRequest> &request,
    const sptr<VornRequestCallbackStub> &callback)
{
    std::vector<Watched> expired; // released outside the lock
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (generation == generation_ && proxy_ != nullptr) {
            auto firstExpired = std::partition(watched_.begin(), watched_.end(),
                [](const Watched &entry) { return entry.request->IsWaiting(); });
            std::move(firstExpired, watched_.end(), std::back_inserter(expired));
            watched_.erase(firstExpired, watched_.end());
            watched_.push_back({request, callback});
            return;
        }
    }
    request->EndByServiceDeath();
}

void ServiceConnection::OnServiceDied(const IRemoteObject *object)
{
    sptr<IVornSAInterface> dead;
    std::vector<Watched> watched;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (proxy_ == nullptr || proxy_->AsObject().GetRefPtr() != object) {
            return;
        }
        dead = std::move(proxy_);
        proxy_ = nullptr;
        recipient_ = nullptr;
        ++generation_;
        watched.swap(watched_);
    }
    VORN_LOGW("VornClient the service died, %{public}zu requests told", watched.size());
    for (const auto &entry : watched) {
        entry.request->EndByServiceDeath();
    }
}
} // namespace Vorn
} // namespace OHOS
