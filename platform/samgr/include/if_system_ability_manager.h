#ifndef SAMGR_IF_SYSTEM_ABILITY_MANAGER_H
#define SAMGR_IF_SYSTEM_ABILITY_MANAGER_H

#include <cstdint>
#include <string>

#include "iremote_broker.h"
#include "iremote_object.h"
#include "refbase.h"

namespace OHOS {
// The operations of the system-ability manager that this platform's services use.
class ISystemAbilityManager : public IRemoteBroker {
public:
    static const unsigned int DUMP_FLAG_PRIORITY_DEFAULT = 1 << 3;

    struct SAExtraProp {
        SAExtraProp() = default;
        SAExtraProp(bool distributed, unsigned int flags, const std::u16string &capabilityText,
            const std::u16string &permissionText)
            : isDistributed(distributed), dumpFlags(flags), capability(capabilityText), permission(permissionText)
        {
        }
        bool isDistributed = false;
        unsigned int dumpFlags = DUMP_FLAG_PRIORITY_DEFAULT;
        std::u16string capability;
        std::u16string permission;
    };

    // Starts the ability if it is not running but can be loaded.
    virtual sptr<IRemoteObject> GetSystemAbility(int32_t systemAbilityId) = 0;
    // Only what is published now.
    virtual sptr<IRemoteObject> CheckSystemAbility(int32_t systemAbilityId) = 0;
    virtual int32_t RemoveSystemAbility(int32_t systemAbilityId) = 0;
    virtual int32_t AddSystemAbility(int32_t systemAbilityId, const sptr<IRemoteObject> &ability,
        const SAExtraProp &extraProp = SAExtraProp(false, DUMP_FLAG_PRIORITY_DEFAULT, u"", u"")) = 0;
    virtual sptr<IRemoteObject> LoadSystemAbility(int32_t systemAbilityId, int32_t timeout) = 0;

    DECLARE_INTERFACE_DESCRIPTOR(u"OHOS.ISystemAbilityManager");
};
} // namespace OHOS

#endif // SAMGR_IF_SYSTEM_ABILITY_MANAGER_H
