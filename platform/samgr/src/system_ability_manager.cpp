#include "system_ability_manager.h"

#include <string>

#include "errors.h"
#include "ipc_host.h"
#include "ipc_skeleton.h"
#include "string_ex.h"
#include "system_ability_definition.h"

namespace OHOS {
namespace {
bool IsValidId(int32_t systemAbilityId)
{
    return systemAbilityId >= FIRST_SYS_ABILITY_ID && systemAbilityId <= LAST_SYS_ABILITY_ID;
}

bool IsLocalDevice(const std::string &deviceId)
{
    return deviceId.empty() || deviceId == "host-local-device";
}
} // namespace

sptr<SystemAbilityManager> SystemAbilityManager::GetInstance()
{
    // Never destroyed: abilities of other libraries may still reach it while the process exits.
    static auto *instance = [] {
        auto *manager = new sptr<SystemAbilityManager>(new SystemAbilityManager());
        // The manager is every process's context object (handle 0) on the device.
        sptr<IRemoteObject> object = (*manager)->AsObject();
        IPCSkeleton::SetContextObject(object);
        return manager;
    }();
    return *instance;
}

void SystemAbilityManager::SetAbilityLoader(const AbilityLoader &loader)
{
    std::lock_guard<std::mutex> lock(mutex_);
    loader_ = loader;
}

bool SystemAbilityManager::AddStatusListener(int32_t systemAbilityId, const void *owner,
    const StatusListener &listener)
{
    if (!IsValidId(systemAbilityId) || owner == nullptr || !listener) {
        return false;
    }
    bool published = false;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (!listeners_[systemAbilityId].emplace(owner, listener).second) {
            return false;
        }
        published = abilities_.count(systemAbilityId) != 0;
    }
    if (published) {
        listener(systemAbilityId, true);
    }
    return true;
}

bool SystemAbilityManager::RemoveStatusListener(int32_t systemAbilityId, const void *owner)
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = listeners_.find(systemAbilityId);
    return it != listeners_.end() && it->second.erase(owner) != 0;
}

void SystemAbilityManager::RemoveStatusListeners(const void *owner)
{
    std::lock_guard<std::mutex> lock(mutex_);
    for (auto &[id, owners] : listeners_) {
        owners.erase(owner);
    }
}

void SystemAbilityManager::Notify(int32_t systemAbilityId, bool added)
{
    std::vector<StatusListener> listeners;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = listeners_.find(systemAbilityId);
        if (it == listeners_.end()) {
            return;
        }
        for (const auto &[owner, listener] : it->second) {
            listeners.push_back(listener);
        }
    }
    for (const auto &listener : listeners) {
        listener(systemAbilityId, added);
    }
}

sptr<IRemoteObject> SystemAbilityManager::Find(int32_t systemAbilityId)
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = abilities_.find(systemAbilityId);
    return it != abilities_.end() ? it->second : nullptr;
}

std::vector<std::u16string> SystemAbilityManager::ListSystemAbilities(unsigned int /* dumpFlags */)
{
    std::vector<std::u16string> ids;
    std::lock_guard<std::mutex> lock(mutex_);
    for (const auto &[id, object] : abilities_) {
        ids.push_back(Str8ToStr16(std::to_string(id)));
    }
    return ids;
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

sptr<IRemoteObject> SystemAbilityManager::GetSystemAbility(int32_t systemAbilityId, const std::string &deviceId)
{
    return IsLocalDevice(deviceId) ? GetSystemAbility(systemAbilityId) : nullptr;
}

sptr<IRemoteObject> SystemAbilityManager::CheckSystemAbility(int32_t systemAbilityId, const std::string &deviceId)
{
    return IsLocalDevice(deviceId) ? CheckSystemAbility(systemAbilityId) : nullptr;
}

sptr<IRemoteObject> SystemAbilityManager::CheckSystemAbility(int32_t systemAbilityId, bool &isExist)
{
    sptr<IRemoteObject> object = CheckSystemAbility(systemAbilityId);
    isExist = object != nullptr;
    return object;
}

int32_t SystemAbilityManager::RemoveSystemAbility(int32_t systemAbilityId)
{
    sptr<IRemoteObject> removed; // released outside the lock: it may be the last reference
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = abilities_.find(systemAbilityId);
        if (it == abilities_.end()) {
            return ERR_NAME_NOT_FOUND;
        }
        removed = it->second;
        abilities_.erase(it);
    }
    Notify(systemAbilityId, false);
    return ERR_OK;
}

int32_t SystemAbilityManager::AddSystemAbility(int32_t systemAbilityId, const sptr<IRemoteObject> &ability,
    const SAExtraProp & /* extraProp */)
{
    if (!IsValidId(systemAbilityId) || ability == nullptr) {
        return ERR_INVALID_VALUE;
    }
    sptr<IRemoteObject> replaced;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        replaced = abilities_[systemAbilityId];
        abilities_[systemAbilityId] = ability;
    }
    Notify(systemAbilityId, true);
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
    std::function<bool(int32_t)> load;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        load = loader_.load;
    }
    if (!load || !load(systemAbilityId)) {
        return nullptr;
    }
    return CheckSystemAbility(systemAbilityId);
}

int32_t SystemAbilityManager::UnloadSystemAbility(int32_t systemAbilityId)
{
    std::function<bool(int32_t)> unload;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        unload = loader_.unload;
    }
    if (!unload) {
        return ERR_INVALID_OPERATION;
    }
    return unload(systemAbilityId) ? ERR_OK : ERR_INVALID_VALUE;
}
} // namespace OHOS
