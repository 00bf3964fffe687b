#ifndef VORN_UTILS_OMSA_UTIL_H
#define VORN_UTILS_OMSA_UTIL_H

#include <cstdint>
#include <string>
#include <unordered_map>

namespace OHOS {
namespace Vorn {
// Reports client events through the device's analytics client. Set-up happens on the first
// event and is retried by every later one until the analytics client accepts it.
class OMSAUtil {
public:
    static int32_t Init();
    // Whether the analytics client has been set up (for the service's dump).
    static bool IsInited();
    static std::string GetCollectUrl();
    // Called on the IPC thread: stamps the caller's uid and posts the report.
    static void OnOmsaEvent(std::string eventId, std::string content);
    // Runs on the report executor: hands one event to the analytics client.
    static void OnEvent(std::string eventId, std::unordered_map<std::string, std::string> eventData);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_OMSA_UTIL_H
