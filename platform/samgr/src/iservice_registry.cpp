#include "iservice_registry.h"

#include "system_ability_manager.h"

namespace OHOS {
SystemAbilityManagerClient &SystemAbilityManagerClient::GetInstance()
{
    static auto *instance = new SystemAbilityManagerClient();
    return *instance;
}

sptr<ISystemAbilityManager> SystemAbilityManagerClient::GetSystemAbilityManager()
{
    return SystemAbilityManager::GetInstance();
}
} // namespace OHOS
