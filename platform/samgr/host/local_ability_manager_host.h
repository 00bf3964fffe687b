#ifndef HOST_PLATFORM_LOCAL_ABILITY_MANAGER_HOST_H
#define HOST_PLATFORM_LOCAL_ABILITY_MANAGER_HOST_H

// Host-only: the service host of this process (sa_main on the device). It keeps the abilities
// that libraries register while they load and starts them on request. The system-ability
// manager also starts them through it on demand.

#include <cstdint>
#include <map>
#include <mutex>

namespace OHOS {
class SystemAbility;
} // namespace OHOS

namespace HostPlatform {
class LocalAbilityManager {
public:
    static LocalAbilityManager &GetInstance();

    bool IsRegistered(int32_t systemAbilityId);
    // Calls the ability's OnStart. Repeated calls are passed on, so an ability's own guard
    // against them can be exercised. False if no ability has the id.
    bool StartAbility(int32_t systemAbilityId);
    // Makes the next Publish of any ability fail (once).
    void FailNextPublish(bool fail = true);

    LocalAbilityManager(const LocalAbilityManager &) = delete;
    LocalAbilityManager &operator=(const LocalAbilityManager &) = delete;

private:
    friend class OHOS::SystemAbility;

    LocalAbilityManager();
    ~LocalAbilityManager() = default;

    bool AddAbility(OHOS::SystemAbility *ability);
    void RemoveAbility(const OHOS::SystemAbility *ability);
    bool ConsumePublishFailure();
    OHOS::SystemAbility *Find(int32_t systemAbilityId);

    std::mutex mutex_;
    std::map<int32_t, OHOS::SystemAbility *> abilities_;
    bool failNextPublish_ = false;
};
} // namespace HostPlatform

#endif // HOST_PLATFORM_LOCAL_ABILITY_MANAGER_HOST_H
