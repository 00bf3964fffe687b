#include "time_utils.h"

#include <chrono>

namespace OHOS {
namespace Vorn {
int64_t TimeUtils::GetTimeMills()
{
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(sinceEpoch).count();
    return static_cast<int64_t>(micros / 1000);
}
} // namespace Vorn
} // namespace OHOS
