#include <gtest/gtest.h>

#include "accesstoken_kit.h"
#include "tokenid_kit.h"

namespace {
using namespace OHOS::Security::AccessToken;

constexpr AccessTokenID TokenOfType(unsigned int type)
{
    // Unique id and the flags around the type bits are set so that only bits 27-28 decide.
    return (type << 27) | (1u << 31) | (1u << 26) | 0x12345u;
}

// The type is bits 27-28 of the low 32 bits; a system app has bit 32 of the full token set.
TEST(AccessTokenKitTest, TypeAndSystemAppFlagComeFromTheirBits)
{
    EXPECT_EQ(AccessTokenKit::GetTokenTypeFlag(TokenOfType(0)), TOKEN_HAP);
    EXPECT_EQ(AccessTokenKit::GetTokenTypeFlag(TokenOfType(2)), TOKEN_SHELL);
    EXPECT_EQ(AccessTokenKit::GetTokenTypeFlag(TokenOfType(3)), TOKEN_TYPE_BUTT);
    EXPECT_EQ(AccessTokenKit::GetTokenTypeFlag((FullTokenID {1} << 32) | TokenOfType(1)), TOKEN_NATIVE);
    EXPECT_EQ(AccessTokenKit::GetTokenTypeFlag(FullTokenID {1} << 32), TOKEN_INVALID);

    EXPECT_TRUE(TokenIdKit::IsSystemAppByFullTokenID((uint64_t {1} << 32) | TokenOfType(0)));
    EXPECT_FALSE(TokenIdKit::IsSystemAppByFullTokenID(TokenOfType(0)));
    EXPECT_FALSE(TokenIdKit::IsSystemAppByFullTokenID(uint64_t {1} << 33));
}
} // namespace
