#include "netmanager_secure_data.h"

#include <string.h>

namespace OHOS {
namespace NetManagerStandard {
SecureData::~SecureData()
{
    // explicit_bzero, unlike memset, is never optimised away for a buffer about to be freed.
    explicit_bzero(data(), size());
}
} // namespace NetManagerStandard
} // namespace OHOS
