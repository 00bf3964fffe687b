#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "string_utils.h"

using namespace OHOS::Vorn;
using Strings = std::vector<std::string>;

namespace {
const std::string CRLF = "\r\n";
const std::string BLANK_LINE = "\r\n\r\n";

std::string Trimmed(std::string text)
{
    StringUtils::Trim(text);
    return text;
}
} // namespace

TEST(StringUtilsTest, SplitAtSeparatorsAndTextWithoutOneComesBackTwice)
{
    EXPECT_EQ(StringUtils::SplitAllByString("abc", CRLF), (Strings {"abc", "abc"}));
    // Shorter than the separator counts the same way.
    EXPECT_EQ(StringUtils::SplitAllByString("a\r", BLANK_LINE), (Strings {"a\r", "a\r"}));
    EXPECT_EQ(StringUtils::SplitAllByString("", CRLF), Strings {""});

    EXPECT_EQ(StringUtils::SplitAllByString("Line" + CRLF, CRLF), Strings {"Line"});
    EXPECT_EQ(StringUtils::SplitAllByString(CRLF + "A", CRLF), (Strings {"", "A"}));
    EXPECT_EQ(StringUtils::SplitAllByString("A" + CRLF + CRLF + "B", CRLF), (Strings {"A", "", "B"}));
    EXPECT_EQ(StringUtils::SplitAllByString(CRLF, CRLF), Strings {""});
    // Response heads of a redirect followed by the final response.
    const std::string heads = "HTTP/1.1 302 Found\r\nLocation: /x\r\n\r\nHTTP/1.1 200 OK\r\nA: b\r\n\r\n";
    EXPECT_EQ(StringUtils::SplitAllByString(heads, BLANK_LINE),
        (Strings {"HTTP/1.1 302 Found\r\nLocation: /x", "HTTP/1.1 200 OK\r\nA: b"}));
}

TEST(StringUtilsTest, TrimRemovesOnlySpaces)
{
    EXPECT_EQ(Trimmed("  max-age=60  "), "max-age=60");
    EXPECT_EQ(Trimmed(" a  b "), "a  b");
    EXPECT_EQ(Trimmed("\tvalue "), "\tvalue");
    EXPECT_EQ(Trimmed(" value\r\n"), "value\r\n");
    EXPECT_EQ(Trimmed("    "), "");
    EXPECT_EQ(Trimmed(""), "");
}

TEST(StringUtilsTest, ToLowerCaseChangesAsciiCapitalsOnly)
{
    EXPECT_EQ(StringUtils::ToLowerCase("Cache-Control: MAX-AGE=1"), "cache-control: max-age=1");
    EXPECT_EQ(StringUtils::ToLowerCase("\xC3\x84\xC3\x96-X"), "\xC3\x84\xC3\x96-x");
}

TEST(StringUtilsTest, DomainIsHostAfterOptionalLowerCaseHttpSchemeOrElseTheScheme)
{
    EXPECT_EQ(StringUtils::GetDomainFromUrl("https://api.example.com:8443/v1/query"), "api.example.com");
    EXPECT_EQ(StringUtils::GetDomainFromUrl("http://127.0.0.1/x"), "127.0.0.1");
    EXPECT_EQ(StringUtils::GetDomainFromUrl("example.com/path?a=b"), "example.com");
    EXPECT_EQ(StringUtils::GetDomainFromUrl("localhost:8080"), "localhost");
    EXPECT_EQ(StringUtils::GetDomainFromUrl("https://"), "");
    EXPECT_EQ(StringUtils::GetDomainFromUrl(""), "");
    // Any other scheme, upper case included, reads as a host named like the scheme.
    EXPECT_EQ(StringUtils::GetDomainFromUrl("HTTPS://api.example.com/x"), "HTTPS");
    EXPECT_EQ(StringUtils::GetDomainFromUrl("ftp://files.example.com/x"), "ftp");
    EXPECT_EQ(StringUtils::GetDomainFromUrl("/relative/path"), "");
}

TEST(StringUtilsTest, ToStringJoinsBetweenNeighbours)
{
    EXPECT_EQ(StringUtils::ToString({}, ','), "");
    EXPECT_EQ(StringUtils::ToString({"localhost"}, ','), "localhost");
    EXPECT_EQ(StringUtils::ToString({"localhost", "*.lan", "10.0.0.1"}, ','), "localhost,*.lan,10.0.0.1");
    EXPECT_EQ(StringUtils::ToString({"", ""}, ';'), ";");
}
