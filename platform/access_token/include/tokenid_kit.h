#ifndef INTERFACES_INNER_KITS_TOKENID_KIT_H
#define INTERFACES_INNER_KITS_TOKENID_KIT_H

#include <cstdint>

namespace OHOS {
namespace Security {
namespace AccessToken {
class TokenIdKit {
public:
    static bool IsSystemAppByFullTokenID(uint64_t tokenId);
};
} // namespace AccessToken
} // namespace Security
} // namespace OHOS

#endif // INTERFACES_INNER_KITS_TOKENID_KIT_H
