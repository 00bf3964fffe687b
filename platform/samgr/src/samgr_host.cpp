#include "samgr_host.h"

#include "errors.h"
#include "ipc_host.h"
#include "system_ability_manager.h"

namespace HostPlatform {
bool KillSystemAbility(int32_t systemAbilityId)
{
    OHOS::sptr<OHOS::SystemAbilityManager> manager = OHOS::SystemAbilityManager::GetInstance();
    OHOS::sptr<OHOS::IRemoteObject> object = manager->CheckSystemAbility(systemAbilityId);
    if (object == nullptr) {
        return false;
    }
    // Forgotten first, as the device's manager drops a dead ability before anyone can ask for
    // it again: a death recipient that looks it up at once finds nothing.
    manager->RemoveSystemAbility(systemAbilityId);
    MarkObjectDead(object);
    return true;
}
} // namespace HostPlatform
