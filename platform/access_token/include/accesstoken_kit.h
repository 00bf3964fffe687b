#ifndef INTERFACES_INNER_KITS_ACCESSTOKEN_KIT_H
#define INTERFACES_INNER_KITS_ACCESSTOKEN_KIT_H

#include "access_token.h"

namespace OHOS {
namespace Security {
namespace AccessToken {
enum AccessTokenKitRet {
    RET_FAILED = -1,
    RET_SUCCESS = 0,
};

// Only the queries answered from the token id's own bits; everything that asks the token
// manager service is absent on the host.
class AccessTokenKit {
public:
    static ATokenTypeEnum GetTokenTypeFlag(AccessTokenID tokenID);
    static ATokenTypeEnum GetTokenTypeFlag(FullTokenID tokenID);
};
} // namespace AccessToken
} // namespace Security
} // namespace OHOS

#endif // INTERFACES_INNER_KITS_ACCESSTOKEN_KIT_H
