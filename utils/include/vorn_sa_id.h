#ifndef VORN_UTILS_VORN_SA_ID_H
#define VORN_UTILS_VORN_SA_ID_H

#include <cstdint>

namespace OHOS {
namespace Vorn {
// The service's system-ability id: it registers under it and the analytics client knows it by it.
constexpr int32_t VORN_SA_ID = 66054;
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_VORN_SA_ID_H
