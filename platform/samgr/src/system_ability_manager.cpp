#include "system_ability_manager.h"

#include "errors.h"
#include "ipc_host.h"
#include "system_ability_definition.h"

namespace OHOS {
namespace {
bool IsValidId(int32_t systemAbilityId)
{
    return systemAbilityId >= FIRST_SYS_ABILITY_ID && systemAbilityId <= LAST_SYS_ABILITY_ID;
}
} // namespace

sptr<SystemAbilityManager> SystemAbilityManager::GetInstance()
{
    // Never destroyed: abilities of other libraries may still reach it while the process exits.
    static auto *instance = new sptr<SystemAbilityManager>(new SystemAbilityManager());
    return *instance;
}

void SystemAbilityManager::SetAbilityLoader(const AbilityLoader &loader)
{
    std::lock_guard<std::mutex> lock(mutex_);
    loader_ = loader;
}

sptr<IRemoteObject> SystemAbilityManager::Find(int32_t systemAbilityId)
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = abilities_.find(systemAbilityId);
    return it != abilities_.end() ? it->second : nullptr;
}

sptr<IRemoteObject> SystemAbilityManager::GetSystemAbility(int32_t systemAbilityId)
{
    sptr<IRemoteObject> object = CheckSystemAbility(systemAbilityId);
    return object != nullptr ? object : LoadSystemAbility(systemAbilityId, 0);
}

sptr<IRemoteObject> SystemAbilityManager::CheckSystemAbility(int32_t systemAbilityId)
{
    return HostPlatform::MakeRemoteProxy(Find(systemAbilityId));
}

int32_t SystemAbilityManager::RemoveSystemAbility(int32_t systemAbilityId)
{
    sptr<IRemoteObject> removed; // released outside the lock: it may be the last reference
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = abilities_.find(systemAbilityId);
    if (it == abilities_.end()) {
        return ERR_NAME_NOT_FOUND;
    }
    removed = it->second;
    abilities_.erase(it);
    return ERR_OK;
}

int32_t SystemAbilityManager::AddSystemAbility(int32_t systemAbilityId, const sptr<IRemoteObject> &ability,
    const SAExtraProp & /* extraProp */)
{
    if (!IsValidId(systemAbilityId) || ability == nullptr) {
        return ERR_INVALID_VALUE;
    }
    sptr<IRemoteObject> replaced; // released outside the lock, as above
    std::lock_guard<std::mutex> lock(mutex_);
    replaced = abilities_[systemAbilityId];
    abilities_[systemAbilityId] = ability;
    return ERR_OK;
}

// Starts the ability through this process's service host, synchronously (the timeout never
// comes into play on the host).
sptr<IRemoteObject> SystemAbilityManager::LoadSystemAbility(int32_t systemAbilityId, int32_t /* timeout */)
{
    sptr<IRemoteObject> object = CheckSystemAbility(systemAbilityId);
    if (object != nullptr || !IsValidId(systemAbilityId)) {
        return object;
    }
    AbilityLoader load;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        load = loader_;
    }
    if (!load || !load(systemAbilityId)) {
        return nullptr;
    }
    return CheckSystemAbility(systemAbilityId);
}
} // namespace OHOS
