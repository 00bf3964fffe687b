#ifndef VORN_INNER_API_VORN_SA_ID_H
#define VORN_INNER_API_VORN_SA_ID_H

#include <cstdint>

namespace OHOS {
namespace Vorn {
// The service's system-ability id: it registers under it, its clients and the analytics client
// know it by it.
constexpr int32_t VORN_SA_ID = 66054;
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_VORN_SA_ID_H
