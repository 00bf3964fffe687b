#include "system_ability.h"

#include "errors.h"
#include "iservice_registry.h"
#include "local_ability_manager_host.h"

namespace OHOS {
namespace {
constexpr int32_t INVALID_SA_ID = -1;
} // namespace

SystemAbility::SystemAbility(bool runOnCreate) : SystemAbility(INVALID_SA_ID, runOnCreate) {}

SystemAbility::SystemAbility(int32_t systemAbilityId, bool /* runOnCreate */) : saId_(systemAbilityId) {}

SystemAbility::~SystemAbility()
{
    HostPlatform::LocalAbilityManager::GetInstance().RemoveAbility(this);
}

bool SystemAbility::MakeAndRegisterAbility(SystemAbility *systemAbility)
{
    if (systemAbility == nullptr) {
        return false;
    }
    if (!HostPlatform::LocalAbilityManager::GetInstance().AddAbility(systemAbility)) {
        delete systemAbility;
        return false;
    }
    return true;
}

void SystemAbility::OnStart() {}

void SystemAbility::OnStop() {}

bool SystemAbility::Publish(sptr<IRemoteObject> systemAbility)
{
    if (systemAbility == nullptr) {
        return false;
    }
    publishObj_ = systemAbility; // kept before anything can fail, see the member
    if (HostPlatform::LocalAbilityManager::GetInstance().ConsumePublishFailure()) {
        return false;
    }
    sptr<ISystemAbilityManager> samgr = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    return samgr != nullptr && samgr->AddSystemAbility(saId_, publishObj_) == ERR_OK;
}
} // namespace OHOS
