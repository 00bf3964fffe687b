#include "service_ability.h"

#include "iservice_registry.h"
#include "local_ability_manager_host.h"
#include "vorn_sa_id.h"

namespace VornTools {
OHOS::sptr<OHOS::IRemoteObject> StartServiceAbility(std::string &error)
{
    const std::string ability = "system ability " + std::to_string(OHOS::Vorn::VORN_SA_ID);
    if (!HostPlatform::LocalAbilityManager::GetInstance().StartAbility(OHOS::Vorn::VORN_SA_ID)) {
        error = "the service library registered no " + ability;
        return nullptr;
    }
    OHOS::sptr<OHOS::ISystemAbilityManager> manager =
        OHOS::SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    OHOS::sptr<OHOS::IRemoteObject> service =
        manager != nullptr ? manager->CheckSystemAbility(OHOS::Vorn::VORN_SA_ID) : nullptr;
    if (service == nullptr) {
        error = ability + " did not publish its remote object";
    }
    return service;
}
} // namespace VornTools
