#include "tokenid_kit.h"

namespace OHOS {
namespace Security {
namespace AccessToken {
namespace {
// The full token id carries the system-application attribute above the 32-bit token id.
constexpr uint64_t SYSTEM_APP_MASK = 1ULL << 32;
} // namespace

bool TokenIdKit::IsSystemAppByFullTokenID(uint64_t tokenId)
{
    return (tokenId & SYSTEM_APP_MASK) == SYSTEM_APP_MASK;
}
} // namespace AccessToken
} // namespace Security
} // namespace OHOS
