#ifndef SAFWK_SYSTEM_ABILITY_ONDEMAND_REASON_H
#define SAFWK_SYSTEM_ABILITY_ONDEMAND_REASON_H

#include <cstdint>
#include <string>

namespace OHOS {
enum class OnDemandReasonId {
    INTERFACE_CALL = 0,
    DEVICE_ONLINE = 1,
    SETTING_SWITCH = 2,
    PARAM = 3,
    COMMON_EVENT = 4,
    TIMED_EVENT = 5,
};

// Why the manager starts, idles, wakes or stops an ability.
class SystemAbilityOnDemandReason {
public:
    SystemAbilityOnDemandReason() = default;
    SystemAbilityOnDemandReason(OnDemandReasonId reasonId, const std::string &reasonName,
        const std::string &reasonValue, int64_t extraDataId);

    void SetId(OnDemandReasonId reasonId);
    OnDemandReasonId GetId() const;
    void SetName(const std::string &reasonName);
    const std::string &GetName() const;
    void SetValue(const std::string &reasonValue);
    const std::string &GetValue() const;
    void SetExtraDataId(int64_t extraDataId);
    int64_t GetExtraDataId() const;
    bool HasExtraData() const;

private:
    OnDemandReasonId reasonId_ = OnDemandReasonId::INTERFACE_CALL;
    std::string reasonName_;
    std::string reasonValue_;
    int64_t extraDataId_ = -1;
};
} // namespace OHOS

#endif // SAFWK_SYSTEM_ABILITY_ONDEMAND_REASON_H
