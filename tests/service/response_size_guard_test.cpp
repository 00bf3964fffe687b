#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "response_size_guard.h"

namespace {
using OHOS::Vorn::ResponseSizeGuard;

// The size the response JSON gives `text`, without the quotation marks around it, serialised the
// way responses are.
size_t JsonSize(const std::string &text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::strict).size() - 2;
}

size_t Escaped(const std::string &text)
{
    return ResponseSizeGuard::EscapedSize(text.data(), text.size());
}

TEST(ResponseSizeGuardTest, CountsEveryAsciiByteAsTheResponseJsonWritesIt)
{
    for (int byte = 0; byte < 0x80; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        EXPECT_EQ(Escaped(text), JsonSize(text)) << "byte " << byte;
    }
}

TEST(ResponseSizeGuardTest, NonAsciiUtf8CountsRaw)
{
    for (const std::string text : {"caf\xc3\xa9", "\xe2\x82\xac 5", "\xf0\x9f\x98\x80\"\n", "\x7f/"}) {
        EXPECT_EQ(Escaped(text), JsonSize(text)) << text;
        EXPECT_GE(Escaped(text), text.size());
    }
}

TEST(ResponseSizeGuardTest, TakesUpToTheLimitAndNothingAfterIt)
{
    ResponseSizeGuard guard;
    guard.SetLimit(10);
    EXPECT_TRUE(guard.Take("ab\"", 3)); // 4
    EXPECT_TRUE(guard.Take("\x01", 1)); // 10: exactly full
    EXPECT_FALSE(guard.Exceeded());
    EXPECT_EQ(guard.Reached(), 10u);

    EXPECT_FALSE(guard.Take("x", 1));
    EXPECT_TRUE(guard.Exceeded());
    EXPECT_EQ(guard.Reached(), 11u);
    // Once past the limit, even an empty piece is refused: the transfer has been stopped.
    EXPECT_FALSE(guard.Take("", 0));
    EXPECT_EQ(guard.Reached(), 11u);

    guard.SetLimit(1);
    EXPECT_FALSE(guard.Exceeded());
    EXPECT_EQ(guard.Reached(), 0u);
    EXPECT_FALSE(guard.Take("\\", 1));
}

TEST(ResponseSizeGuardTest, WithoutALimitEverythingFits)
{
    ResponseSizeGuard guard;
    const std::string big(1 << 20, '"');
    EXPECT_TRUE(guard.Take(big.data(), big.size()));
    EXPECT_EQ(guard.Reached(), 2u << 20);
}
} // namespace
