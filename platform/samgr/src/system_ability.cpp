#include "system_ability.h"

#include "errors.h"
#include "iservice_registry.h"
#include "local_ability_manager_host.h"
#include "system_ability_manager.h"

namespace OHOS {
namespace {
constexpr int32_t INVALID_SA_ID = -1;
} // namespace

SystemAbility::SystemAbility(bool runOnCreate) : SystemAbility(INVALID_SA_ID, runOnCreate) {}

SystemAbility::SystemAbility(int32_t systemAbilityId, bool runOnCreate)
    : saId_(systemAbilityId), isRunOnCreate_(runOnCreate)
{
}

SystemAbility::~SystemAbility()
{
    HostPlatform::LocalAbilityManager::GetInstance().RemoveAbility(this);
    SystemAbilityManager::GetInstance()->RemoveStatusListeners(this);
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

bool SystemAbility::AddSystemAbilityListener(int32_t systemAbilityId)
{
    return SystemAbilityManager::GetInstance()->AddStatusListener(systemAbilityId, this,
        [this](int32_t id, bool added) {
            if (added) {
                OnAddSystemAbility(id, "");
            } else {
                OnRemoveSystemAbility(id, "");
            }
        });
}

bool SystemAbility::RemoveSystemAbilityListener(int32_t systemAbilityId)
{
    return SystemAbilityManager::GetInstance()->RemoveStatusListener(systemAbilityId, this);
}

int32_t SystemAbility::GetSystemAbilitId() const
{
    return saId_;
}

bool SystemAbility::IsRunOnCreate() const
{
    return isRunOnCreate_;
}

void SystemAbility::OnDump() {}

void SystemAbility::OnStart() {}

void SystemAbility::OnStart(const SystemAbilityOnDemandReason & /* startReason */)
{
    OnStart();
}

int32_t SystemAbility::OnIdle(const SystemAbilityOnDemandReason & /* idleReason */)
{
    return 0;
}

void SystemAbility::OnActive(const SystemAbilityOnDemandReason & /* activeReason */) {}

void SystemAbility::OnStop() {}

void SystemAbility::OnStop(const SystemAbilityOnDemandReason & /* stopReason */)
{
    OnStop();
}

void SystemAbility::OnAddSystemAbility(int32_t /* systemAbilityId */, const std::string & /* deviceId */) {}

void SystemAbility::OnRemoveSystemAbility(int32_t /* systemAbilityId */, const std::string & /* deviceId */) {}

int32_t SystemAbility::OnSvcCmd(int32_t /* fd */, const std::vector<std::u16string> & /* args */)
{
    return ERR_OK;
}

sptr<IRemoteObject> SystemAbility::GetSystemAbility(int32_t systemAbilityId)
{
    sptr<ISystemAbilityManager> samgr = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    return samgr != nullptr ? samgr->GetSystemAbility(systemAbilityId) : nullptr;
}

bool SystemAbility::Publish(sptr<IRemoteObject> systemAbility)
{
    if (systemAbility == nullptr) {
        return false;
    }
    // Kept before anything can fail: the caller's reference may be the object's only strong
    // one, and dropping it would destroy the ability from inside its own OnStart.
    publishObj_ = systemAbility;
    if (HostPlatform::LocalAbilityManager::GetInstance().ConsumePublishFailure()) {
        return false;
    }
    sptr<ISystemAbilityManager> samgr = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (samgr == nullptr || samgr->AddSystemAbility(saId_, publishObj_) != ERR_OK) {
        return false;
    }
    abilityState_ = SystemAbilityState::ACTIVE;
    return true;
}

bool SystemAbility::OnStartFail(int32_t /* errCode */)
{
    return true;
}

bool SystemAbility::CancelIdle()
{
    if (abilityState_ != SystemAbilityState::IDLE) {
        return false;
    }
    OnActive(SystemAbilityOnDemandReason());
    abilityState_ = SystemAbilityState::ACTIVE;
    return true;
}

void SystemAbility::StopAbility(int32_t systemAbilityId)
{
    HostPlatform::LocalAbilityManager::GetInstance().StopAbility(systemAbilityId);
}

SystemAbilityState SystemAbility::GetAbilityState()
{
    return abilityState_;
}

int32_t SystemAbility::OnExtension(const std::string & /* extension */, MessageParcel & /* data */,
    MessageParcel & /* reply */)
{
    return ERR_OK;
}

void SystemAbility::Start()
{
    OnStart(SystemAbilityOnDemandReason());
}

// The published object stays referenced here, as on the device, so stopping never destroys
// the ability that is being stopped.
void SystemAbility::Stop()
{
    OnStop(SystemAbilityOnDemandReason());
    if (abilityState_ == SystemAbilityState::NOT_LOADED) {
        return;
    }
    abilityState_ = SystemAbilityState::NOT_LOADED;
    SystemAbilityManager::GetInstance()->RemoveSystemAbility(saId_);
}
} // namespace OHOS
