#include "string_ex.h"

#include <cstdint>
#include <optional>

namespace OHOS {
namespace {
constexpr char32_t MAX_CODE_POINT = 0x10FFFF;
constexpr char32_t SURROGATE_FIRST = 0xD800;
constexpr char32_t LOW_SURROGATE_FIRST = 0xDC00;
constexpr char32_t SURROGATE_LAST = 0xDFFF;
constexpr char32_t SUPPLEMENTARY_FIRST = 0x10000;

bool IsSurrogate(char32_t c)
{
    return c >= SURROGATE_FIRST && c <= SURROGATE_LAST;
}

// Decodes one code point at `pos` and advances it; nullopt for any malformed sequence.
std::optional<char32_t> DecodeUtf8(const std::string &str, size_t &pos)
{
    auto lead = static_cast<uint8_t>(str[pos]);
    size_t extra = 0;
    char32_t value = 0;
    char32_t minimum = 0;
    if (lead < 0x80) {
        ++pos;
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        extra = 1;
        value = lead & 0x1F;
        minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        extra = 2;
        value = lead & 0x0F;
        minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        extra = 3;
        value = lead & 0x07;
        minimum = SUPPLEMENTARY_FIRST;
    } else {
        return std::nullopt;
    }
    if (str.size() - pos <= extra) {
        return std::nullopt;
    }
    for (size_t i = 1; i <= extra; ++i) {
        auto next = static_cast<uint8_t>(str[pos + i]);
        if ((next & 0xC0) != 0x80) {
            return std::nullopt;
        }
        value = (value << 6) | (next & 0x3F);
    }
    if (value < minimum || value > MAX_CODE_POINT || IsSurrogate(value)) {
        return std::nullopt;
    }
    pos += extra + 1;
    return value;
}
} // namespace

std::u16string Str8ToStr16(const std::string &str)
{
    std::u16string result;
    result.reserve(str.size());
    size_t pos = 0;
    while (pos < str.size()) {
        std::optional<char32_t> c = DecodeUtf8(str, pos);
        if (!c) {
            return u"";
        }
        if (*c < SUPPLEMENTARY_FIRST) {
            result.push_back(static_cast<char16_t>(*c));
            continue;
        }
        char32_t offset = *c - SUPPLEMENTARY_FIRST;
        result.push_back(static_cast<char16_t>(SURROGATE_FIRST + (offset >> 10)));
        result.push_back(static_cast<char16_t>(LOW_SURROGATE_FIRST + (offset & 0x3FF)));
    }
    return result;
}
} // namespace OHOS
