// The string and path helpers over arbitrary text, with the properties callers rely on checked
// along the way: the header parser trusts SplitAllByString and Trim, the engine GetDomainFromUrl,
// the file reader Path.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "path.h"
#include "string_utils.h"

using OHOS::Vorn::Path;
using OHOS::Vorn::StringUtils;

namespace {
void Require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

void CheckSplit(const std::string &text, const std::string &separator)
{
    if (separator.empty()) {
        return; // callers never pass one, and it would never end
    }
    const std::vector<std::string> pieces = StringUtils::SplitAllByString(text, separator);
    Require(!pieces.empty());
    if (text.find(separator) == std::string::npos) {
        Require(pieces.size() == (text.empty() ? 1u : 2u));
        return;
    }
    for (const std::string &piece : pieces) {
        Require(piece.find(separator) == std::string::npos);
    }
}

void CheckTrim(std::string text)
{
    const std::string original = text;
    StringUtils::Trim(text);
    Require(original.find(text) != std::string::npos);
    Require(text.empty() || (text.front() != ' ' && text.back() != ' '));
}

// The host is defined as what an ECMAScript regex search finds; std::regex is the reference for
// URLs short enough for its recursion.
void CheckDomain(const std::string &url)
{
    constexpr size_t REGEX_SAFE_LENGTH = 1024;
    const std::string domain = StringUtils::GetDomainFromUrl(url);
    Require(domain.find_first_of("/:") == std::string::npos);
    Require(url.find(domain) != std::string::npos);
    if (url.size() > REGEX_SAFE_LENGTH) {
        return;
    }
    static const std::regex pattern(R"((?:https?:\/\/)?([^\/:]*))", std::regex::ECMAScript | std::regex::optimize);
    std::smatch match;
    const bool found = std::regex_search(url, match, pattern) && match[1].matched;
    Require(domain == (found ? match[1].str() : std::string()));
}

void CheckTokens(const std::string &text, const std::string &delimiters)
{
    const std::vector<std::string> tokens = Path::Tokenize(text, delimiters);
    std::string joined;
    for (const std::string &token : tokens) {
        Require(token.find_first_of(delimiters) == std::string::npos);
        joined += token;
    }
    std::string expected;
    for (char c : text) {
        if (delimiters.find(c) == std::string::npos) {
            expected += c;
        }
    }
    Require(joined == expected);
}

void ExercisePath(const std::string &text, Path::PathType type)
{
    Path path(text);
    path.Set(text, type);
    const std::string posix = path.Str(Path::POSIX);
    const std::string windows = path.Str(Path::WINDOWS);
    // Printing is pure: the same value prints the same text again.
    Require(posix == path.Str(Path::POSIX) && windows == path.Str(Path::WINDOWS));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider provider(data, size);
    const std::string separator = provider.ConsumeRandomLengthString(8);
    const std::string delimiters = provider.ConsumeRandomLengthString(4);
    const char joinCharacter = provider.ConsumeIntegral<char>();
    const std::string text = provider.ConsumeRemainingBytesAsString();

    Require(StringUtils::ToLowerCase(text).size() == text.size());
    CheckSplit(text, separator);
    CheckSplit(text, "\r\n");
    CheckSplit(text, "\r\n\r\n");
    CheckTrim(text);
    CheckDomain(text);
    (void)StringUtils::ToString(StringUtils::SplitAllByString(text, "\n"), joinCharacter);
    CheckTokens(text, delimiters);
    CheckTokens(text, "/\\");
    ExercisePath(text, Path::POSIX);
    ExercisePath(text, Path::WINDOWS);
    return 0;
}
