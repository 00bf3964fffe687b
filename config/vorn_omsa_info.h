#ifndef VORN_CONFIG_VORN_OMSA_INFO_H
#define VORN_CONFIG_VORN_OMSA_INFO_H

#include <string>

#include "nlohmann/json.hpp"

namespace OHOS {
namespace Vorn {
// An analytics event handed over by a client: its id and its content as JSON text.
class VornOmsaInfo {
public:
    struct OmsaInfo {
        std::string eventId;
        std::string content;
    };

    // Throws the JSON library's type_error when a present key is not a string.
    static void FromJson(const nlohmann::json &jsonObject, OmsaInfo &omsaInfo);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_CONFIG_VORN_OMSA_INFO_H
