#ifndef SAFWK_SYSTEM_ABILITY_H
#define SAFWK_SYSTEM_ABILITY_H

#include <cstdint>
#include <string>

#include "iremote_object.h"
#include "refbase.h"

namespace HostPlatform {
class LocalAbilityManager;
} // namespace HostPlatform

namespace OHOS {
#define REGISTER_SYSTEM_ABILITY_BY_ID(abilityClassName, systemAbilityId, runOnCreate)                                  \
    const bool abilityClassName##_##RegisterResult =                                                                   \
        SystemAbility::MakeAndRegisterAbility(new abilityClassName(systemAbilityId, runOnCreate));

#define DECLARE_SYSTEM_ABILITY(className)                                                                              \
public:                                                                                                                \
    virtual std::string GetClassName() override                                                                        \
    {                                                                                                                  \
        return #className;                                                                                             \
    }

#define DECLARE_BASE_SYSTEM_ABILITY(className)                                                                         \
public:                                                                                                                \
    virtual std::string GetClassName() = 0

class SystemAbility {
    DECLARE_BASE_SYSTEM_ABILITY(SystemAbility);

public:
    // Hands the ability to this process's service host, which keeps it. On failure (no object,
    // or its id already taken) the object is deleted.
    static bool MakeAndRegisterAbility(SystemAbility *systemAbility);

protected:
    virtual void OnStart();
    virtual void OnStop();

    // Registers the object with the system-ability manager under this ability's id.
    bool Publish(sptr<IRemoteObject> systemAbility);

    SystemAbility(bool runOnCreate = false);
    SystemAbility(int32_t systemAbilityId, bool runOnCreate = false);
    virtual ~SystemAbility();

private:
    friend class HostPlatform::LocalAbilityManager;

    int32_t saId_;
    // The published object stays referenced here, as on the device, so that dropping the
    // caller's reference never destroys the ability from inside its own OnStart.
    sptr<IRemoteObject> publishObj_;
};
} // namespace OHOS

#endif // SAFWK_SYSTEM_ABILITY_H
