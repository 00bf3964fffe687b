#include "vorn_error_code.h"

#include <unordered_map>

namespace OHOS {
namespace Vorn {
std::string GetVornErrorMessage(int32_t code)
{
    static const std::unordered_map<int32_t, std::string> messages = {{SUCCESS, "Success."}};
    auto it = messages.find(code);
    return it == messages.end() ? std::string() : it->second;
}
} // namespace Vorn
} // namespace OHOS
