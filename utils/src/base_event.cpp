#include "base_event.h"

#include <optional>

#include <nlohmann/json.hpp>

#include "json_utils.h"
#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
std::unordered_map<std::string, std::string> BaseEvent::EventDataJsonToMap(std::string &content)
{
    std::unordered_map<std::string, std::string> eventData;
    std::optional<nlohmann::json> json = JsonUtils::Parse(content);
    if (!json) {
        VORN_COMMON_LOGE("BaseEvent::EventDataJsonToMap json accept failed");
        return eventData;
    }
    try {
        // Objects walk their members in key order, arrays their elements under "0", "1", ...,
        // and a single value stands under the empty key.
        for (const auto &item : json->items()) {
            eventData.emplace(item.key(), item.value().get<std::string>());
        }
    } catch (const nlohmann::json::exception &) {
        VORN_COMMON_LOGE("BaseEvent::EventDataJsonToMap json parse failed");
    }
    return eventData;
}
} // namespace Vorn
} // namespace OHOS
