#ifndef SAMGR_ISERVICE_REGISTRY_H
#define SAMGR_ISERVICE_REGISTRY_H

#include "if_system_ability_manager.h"
#include "nocopyable.h"
#include "refbase.h"

namespace OHOS {
class SystemAbilityManagerClient {
public:
    static SystemAbilityManagerClient &GetInstance();
    sptr<ISystemAbilityManager> GetSystemAbilityManager();

private:
    SystemAbilityManagerClient() = default;
    ~SystemAbilityManagerClient() = default;
    DISALLOW_COPY_AND_MOVE(SystemAbilityManagerClient);
};
} // namespace OHOS

#endif // SAMGR_ISERVICE_REGISTRY_H
