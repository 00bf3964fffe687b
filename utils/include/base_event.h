#ifndef VORN_UTILS_BASE_EVENT_H
#define VORN_UTILS_BASE_EVENT_H

#include <string>
#include <unordered_map>

namespace OHOS {
namespace Vorn {
class BaseEvent {
public:
    // Flattens an event's JSON content into string pairs. Only string values are taken; the
    // first value of any other kind ends the walk, keeping the pairs taken before it.
    static std::unordered_map<std::string, std::string> EventDataJsonToMap(std::string &content);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_BASE_EVENT_H
