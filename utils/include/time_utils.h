#ifndef VORN_UTILS_TIME_UTILS_H
#define VORN_UTILS_TIME_UTILS_H

#include <cstdint>

namespace OHOS {
namespace Vorn {
class TimeUtils {
public:
    // Wall-clock milliseconds since the Unix epoch, truncated toward zero.
    static int64_t GetTimeMills();
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_TIME_UTILS_H
