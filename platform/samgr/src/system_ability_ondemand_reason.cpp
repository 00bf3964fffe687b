#include "system_ability_ondemand_reason.h"

namespace OHOS {
SystemAbilityOnDemandReason::SystemAbilityOnDemandReason(OnDemandReasonId reasonId, const std::string &reasonName,
    const std::string &reasonValue, int64_t extraDataId)
    : reasonId_(reasonId), reasonName_(reasonName), reasonValue_(reasonValue), extraDataId_(extraDataId)
{
}

void SystemAbilityOnDemandReason::SetId(OnDemandReasonId reasonId)
{
    reasonId_ = reasonId;
}

OnDemandReasonId SystemAbilityOnDemandReason::GetId() const
{
    return reasonId_;
}

void SystemAbilityOnDemandReason::SetName(const std::string &reasonName)
{
    reasonName_ = reasonName;
}

const std::string &SystemAbilityOnDemandReason::GetName() const
{
    return reasonName_;
}

void SystemAbilityOnDemandReason::SetValue(const std::string &reasonValue)
{
    reasonValue_ = reasonValue;
}

const std::string &SystemAbilityOnDemandReason::GetValue() const
{
    return reasonValue_;
}

void SystemAbilityOnDemandReason::SetExtraDataId(int64_t extraDataId)
{
    extraDataId_ = extraDataId;
}

int64_t SystemAbilityOnDemandReason::GetExtraDataId() const
{
    return extraDataId_;
}

bool SystemAbilityOnDemandReason::HasExtraData() const
{
    return extraDataId_ != -1;
}
} // namespace OHOS
