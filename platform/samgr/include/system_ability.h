#ifndef SAFWK_SYSTEM_ABILITY_H
#define SAFWK_SYSTEM_ABILITY_H

#include <cstdint>
#include <string>
#include <vector>

#include "iremote_object.h"
#include "refbase.h"
#include "system_ability_ondemand_reason.h"

namespace HostPlatform {
class LocalAbilityManager;
} // namespace HostPlatform

namespace OHOS {
class MessageParcel;

#define REGISTER_SYSTEM_ABILITY_BY_ID(abilityClassName, systemAbilityId, runOnCreate) \
    const bool abilityClassName##_##RegisterResult =                                   \
        SystemAbility::MakeAndRegisterAbility(new abilityClassName(systemAbilityId, runOnCreate));

#define DECLARE_SYSTEM_ABILITY(className)  \
public:                                    \
    virtual std::string GetClassName() override \
    {                                      \
        return #className;                 \
    }

#define DECLARE_BASE_SYSTEM_ABILITY(className) \
public:                                        \
    virtual std::string GetClassName() = 0

#define DECLEAR_SYSTEM_ABILITY(className) DECLARE_SYSTEM_ABILITY(className)
#define DECLEAR_BASE_SYSTEM_ABILITY(className) DECLARE_BASE_SYSTEM_ABILITY(className)

enum class SystemAbilityState {
    NOT_LOADED = 0,
    ACTIVE,
    IDLE,
};

// The lifecycle hooks come in overload pairs (with and without a reason) and services override
// just the one they need; that is intended, so hiding the other is not worth a warning.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
class SystemAbility {
    DECLARE_BASE_SYSTEM_ABILITY(SystemAbility);

public:
    // Hands the ability to this process's service host, which keeps it. On failure (no object,
    // or its id already taken) the object is deleted.
    static bool MakeAndRegisterAbility(SystemAbility *systemAbility);
    bool AddSystemAbilityListener(int32_t systemAbilityId);
    bool RemoveSystemAbilityListener(int32_t systemAbilityId);
    int32_t GetSystemAbilitId() const;
    bool IsRunOnCreate() const;

protected:
    virtual void OnDump();
    virtual void OnStart();
    virtual void OnStart(const SystemAbilityOnDemandReason &startReason);
    virtual int32_t OnIdle(const SystemAbilityOnDemandReason &idleReason);
    virtual void OnActive(const SystemAbilityOnDemandReason &activeReason);
    virtual void OnStop();
    virtual void OnStop(const SystemAbilityOnDemandReason &stopReason);
    virtual void OnAddSystemAbility(int32_t systemAbilityId, const std::string &deviceId);
    virtual void OnRemoveSystemAbility(int32_t systemAbilityId, const std::string &deviceId);
    virtual int32_t OnSvcCmd(int32_t fd, const std::vector<std::u16string> &args);

    sptr<IRemoteObject> GetSystemAbility(int32_t systemAbilityId);
    // Registers the object with the system-ability manager under this ability's id.
    bool Publish(sptr<IRemoteObject> systemAbility);
    bool OnStartFail(int32_t errCode);
    bool CancelIdle();
    static void StopAbility(int32_t systemAbilityId);

    SystemAbility(bool runOnCreate = false);
    SystemAbility(int32_t systemAbilityId, bool runOnCreate = false);
    virtual ~SystemAbility();

    SystemAbilityState GetAbilityState();
    virtual int32_t OnExtension(const std::string &extension, MessageParcel &data, MessageParcel &reply);

private:
    friend class HostPlatform::LocalAbilityManager;

    void Start();
    void Stop();

    int32_t saId_;
    bool isRunOnCreate_;
    SystemAbilityState abilityState_ = SystemAbilityState::NOT_LOADED;
    sptr<IRemoteObject> publishObj_;
};
#pragma GCC diagnostic pop
} // namespace OHOS

#endif // SAFWK_SYSTEM_ABILITY_H
