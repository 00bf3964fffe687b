#ifndef OMSA_CLIENT_LITE_API_H
#define OMSA_CLIENT_LITE_API_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

namespace OHOS {
namespace OmsaCloud {
enum class EventTypeLite : int32_t {
    MAINTENANCE = 0,
    OPERATION = 1,
};

struct OmsaResultLite {
    int32_t code = 0;
    std::string message;
};

struct TypeConfigLite {
    int32_t reportPolicy = 0;
    std::string collectUrl;
    std::map<std::string, std::string> headers;
};

struct OmsaConfigLite {
    std::string tag;
    std::string packageName;
    int32_t saId = 0;
    std::shared_ptr<TypeConfigLite> maintenanceConfig;
    std::shared_ptr<TypeConfigLite> operationConfig;
};

// The host's analytics client records every call as one JSON line in the file named by
// VORN_OMSA_LOG (nothing when unset) and answers with the code in VORN_OMSA_RESULT (0 when unset).
class OmsaClientLiteApi {
public:
    static OmsaResultLite SetConfigOptions(const OmsaConfigLite &config);
    static OmsaResultLite OnEvent(const std::string &tag, EventTypeLite type, const std::string &eventId,
        const std::unordered_map<std::string, std::string> &data);
};
} // namespace OmsaCloud
} // namespace OHOS

#endif // OMSA_CLIENT_LITE_API_H
