#include <string>
#include <vector>

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

// Every ASCII byte, and UTF-8 beyond ASCII, which counts raw.
TEST(ResponseSizeGuardTest, CountsEveryByteAsTheResponseJsonWritesIt)
{
    std::vector<std::string> texts = {"caf\xc3\xa9", "\xe2\x82\xac 5", "\xf0\x9f\x98\x80\"\n", "\x7f/"};
    for (int byte = 0; byte < 0x80; ++byte) {
        texts.emplace_back(1, static_cast<char>(byte));
    }
    for (const std::string &text : texts) {
        EXPECT_EQ(Escaped(text), JsonSize(text)) << text;
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

} // namespace
