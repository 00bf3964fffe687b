#include "accesstoken_kit.h"

namespace OHOS {
namespace Security {
namespace AccessToken {
namespace {
// The token type sits in bits 27-28 of the 32-bit token id (the `type` field of AccessTokenIDInner).
constexpr unsigned int TOKEN_TYPE_SHIFT = 27;
constexpr unsigned int TOKEN_TYPE_MASK = 0x3;
constexpr FullTokenID TOKEN_ID_LOW_MASK = 0xFFFFFFFFULL;
} // namespace

ATokenTypeEnum AccessTokenKit::GetTokenTypeFlag(AccessTokenID tokenID)
{
    if (tokenID == INVALID_TOKENID) {
        return TOKEN_INVALID;
    }
    return static_cast<ATokenTypeEnum>((tokenID >> TOKEN_TYPE_SHIFT) & TOKEN_TYPE_MASK);
}

ATokenTypeEnum AccessTokenKit::GetTokenTypeFlag(FullTokenID tokenID)
{
    return GetTokenTypeFlag(static_cast<AccessTokenID>(tokenID & TOKEN_ID_LOW_MASK));
}
} // namespace AccessToken
} // namespace Security
} // namespace OHOS
