#include "local_ability_manager_host.h"

#include "system_ability.h"
#include "system_ability_manager.h"

namespace HostPlatform {
LocalAbilityManager &LocalAbilityManager::GetInstance()
{
    // Never destroyed: abilities unregister from their destructors, whenever those run.
    static auto *instance = new LocalAbilityManager();
    return *instance;
}

LocalAbilityManager::LocalAbilityManager()
{
    OHOS::SystemAbilityManager::GetInstance()->SetAbilityLoader(
        [](int32_t id) { return GetInstance().StartAbility(id); });
}

bool LocalAbilityManager::IsRegistered(int32_t systemAbilityId)
{
    return Find(systemAbilityId) != nullptr;
}

bool LocalAbilityManager::StartAbility(int32_t systemAbilityId)
{
    OHOS::SystemAbility *ability = Find(systemAbilityId);
    if (ability == nullptr) {
        return false;
    }
    ability->OnStart();
    return true;
}

void LocalAbilityManager::FailNextPublish(bool fail)
{
    std::lock_guard<std::mutex> lock(mutex_);
    failNextPublish_ = fail;
}

bool LocalAbilityManager::AddAbility(OHOS::SystemAbility *ability)
{
    std::lock_guard<std::mutex> lock(mutex_);
    return abilities_.emplace(ability->saId_, ability).second;
}

void LocalAbilityManager::RemoveAbility(const OHOS::SystemAbility *ability)
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = abilities_.find(ability->saId_);
    if (it != abilities_.end() && it->second == ability) {
        abilities_.erase(it);
    }
}

bool LocalAbilityManager::ConsumePublishFailure()
{
    std::lock_guard<std::mutex> lock(mutex_);
    bool fail = failNextPublish_;
    failNextPublish_ = false;
    return fail;
}

OHOS::SystemAbility *LocalAbilityManager::Find(int32_t systemAbilityId)
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = abilities_.find(systemAbilityId);
    return it != abilities_.end() ? it->second : nullptr;
}
} // namespace HostPlatform
