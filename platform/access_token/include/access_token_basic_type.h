#ifndef ACCESS_TOKEN_BASIC_TYPE_H
#define ACCESS_TOKEN_BASIC_TYPE_H

#include <cstdint>

namespace OHOS {
namespace Security {
namespace AccessToken {
typedef unsigned int AccessTokenID;
typedef uint64_t FullTokenID;
typedef unsigned int AccessTokenAttr;
constexpr const AccessTokenID INVALID_TOKENID = 0;

typedef enum TypeATokenTypeEnum {
    TOKEN_INVALID = -1,
    TOKEN_HAP = 0,
    TOKEN_NATIVE = 1,
    TOKEN_SHELL = 2,
    TOKEN_TYPE_BUTT,
} ATokenTypeEnum;

typedef enum TypePermissionState {
    PERMISSION_DENIED = -1,
    PERMISSION_GRANTED = 0,
} PermissionState;

typedef struct {
    unsigned int tokenUniqueID : 20;
    unsigned int toolFlag : 1;
    unsigned int res : 2;
    unsigned int type_ext : 1;
    unsigned int cloneFlag : 1;
    unsigned int renderFlag : 1;
    unsigned int dlpFlag : 1;
    unsigned int type : 2;
    unsigned int version : 3;
} AccessTokenIDInner;

typedef union {
    unsigned long long tokenIDEx;
    struct {
        AccessTokenID tokenID;
        AccessTokenAttr tokenAttr;
    } tokenIdExStruct;
} AccessTokenIDEx;
} // namespace AccessToken
} // namespace Security
} // namespace OHOS

#endif // ACCESS_TOKEN_BASIC_TYPE_H
