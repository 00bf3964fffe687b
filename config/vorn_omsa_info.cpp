#include "vorn_omsa_info.h"

namespace OHOS {
namespace Vorn {
void VornOmsaInfo::FromJson(const nlohmann::json &jsonObject, OmsaInfo &omsaInfo)
{
    if (!jsonObject.is_object()) {
        return;
    }
    if (jsonObject.contains("eventId")) {
        omsaInfo.eventId = jsonObject.at("eventId").get<std::string>();
    }
    if (jsonObject.contains("content")) {
        omsaInfo.content = jsonObject.at("content").get<std::string>();
    }
}
} // namespace Vorn
} // namespace OHOS
