#ifndef SAMGR_SYSTEM_ABILITY_MANAGER_H
#define SAMGR_SYSTEM_ABILITY_MANAGER_H

#include <functional>
#include <map>
#include <mutex>

#include "if_system_ability_manager.h"
#include "iremote_stub.h"

namespace OHOS {
// The in-process system-ability manager of the host. It keeps the objects that abilities
// publish and hands out what a client process would get for them: a proxy.
class SystemAbilityManager : public IRemoteStub<ISystemAbilityManager> {
public:
    // How the manager starts an ability of this process on demand (the service host installs
    // it); returns whether the ability is known.
    using AbilityLoader = std::function<bool(int32_t)>;

    static sptr<SystemAbilityManager> GetInstance();

    void SetAbilityLoader(const AbilityLoader &loader);

    sptr<IRemoteObject> GetSystemAbility(int32_t systemAbilityId) override;
    sptr<IRemoteObject> CheckSystemAbility(int32_t systemAbilityId) override;
    int32_t RemoveSystemAbility(int32_t systemAbilityId) override;
    int32_t AddSystemAbility(int32_t systemAbilityId, const sptr<IRemoteObject> &ability,
        const SAExtraProp &extraProp) override;
    sptr<IRemoteObject> LoadSystemAbility(int32_t systemAbilityId, int32_t timeout) override;

private:
    SystemAbilityManager() = default;

    sptr<IRemoteObject> Find(int32_t systemAbilityId);

    std::mutex mutex_;
    std::map<int32_t, sptr<IRemoteObject>> abilities_;
    AbilityLoader loader_;
};
} // namespace OHOS

#endif // SAMGR_SYSTEM_ABILITY_MANAGER_H
