#ifndef SAMGR_SYSTEM_ABILITY_MANAGER_H
#define SAMGR_SYSTEM_ABILITY_MANAGER_H

#include <functional>
#include <map>
#include <mutex>
#include <vector>

#include "if_system_ability_manager.h"
#include "iremote_stub.h"

namespace OHOS {
// The in-process system-ability manager of the host. It keeps the objects that abilities
// publish and hands out what a client process would get for them: a proxy.
class SystemAbilityManager : public IRemoteStub<ISystemAbilityManager> {
public:
    // How the manager starts or stops an ability of this process on demand (the service host
    // installs it); each returns whether the ability is known.
    struct AbilityLoader {
        std::function<bool(int32_t)> load;
        std::function<bool(int32_t)> unload;
    };
    // Told whether an ability was added (true) or removed (false).
    using StatusListener = std::function<void(int32_t systemAbilityId, bool added)>;

    static sptr<SystemAbilityManager> GetInstance();

    void SetAbilityLoader(const AbilityLoader &loader);
    // Registers `listener` for `owner`; it hears at once if the ability is already published.
    bool AddStatusListener(int32_t systemAbilityId, const void *owner, const StatusListener &listener);
    bool RemoveStatusListener(int32_t systemAbilityId, const void *owner);
    void RemoveStatusListeners(const void *owner);

    std::vector<std::u16string> ListSystemAbilities(unsigned int dumpFlags) override;
    sptr<IRemoteObject> GetSystemAbility(int32_t systemAbilityId) override;
    sptr<IRemoteObject> CheckSystemAbility(int32_t systemAbilityId) override;
    sptr<IRemoteObject> GetSystemAbility(int32_t systemAbilityId, const std::string &deviceId) override;
    sptr<IRemoteObject> CheckSystemAbility(int32_t systemAbilityId, const std::string &deviceId) override;
    sptr<IRemoteObject> CheckSystemAbility(int32_t systemAbilityId, bool &isExist) override;
    int32_t RemoveSystemAbility(int32_t systemAbilityId) override;
    int32_t AddSystemAbility(int32_t systemAbilityId, const sptr<IRemoteObject> &ability,
        const SAExtraProp &extraProp) override;
    sptr<IRemoteObject> LoadSystemAbility(int32_t systemAbilityId, int32_t timeout) override;
    int32_t UnloadSystemAbility(int32_t systemAbilityId) override;

private:
    SystemAbilityManager() = default;

    sptr<IRemoteObject> Find(int32_t systemAbilityId);
    void Notify(int32_t systemAbilityId, bool added);

    std::mutex mutex_;
    std::map<int32_t, sptr<IRemoteObject>> abilities_;
    AbilityLoader loader_;
    std::map<int32_t, std::map<const void *, StatusListener>> listeners_;
};
} // namespace OHOS

#endif // SAMGR_SYSTEM_ABILITY_MANAGER_H
