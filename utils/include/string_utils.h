#ifndef VORN_UTILS_STRING_UTILS_H
#define VORN_UTILS_STRING_UTILS_H

#include <string>
#include <vector>

namespace OHOS {
namespace Vorn {
class StringUtils {
public:
    // Maps every byte through tolower in the default locale: only ASCII capitals change.
    static std::string ToLowerCase(const std::string &str);

    // Splits at every occurrence of the (non-empty) separator. The header parser depends on its
    // edge behaviour: a non-empty text without the separator comes back twice, an empty text as one
    // empty string, a leading separator gives an empty first piece and a trailing one no last piece.
    static std::vector<std::string> SplitAllByString(const std::string &str, const std::string &separator);

    // Removes leading and trailing spaces (byte 32 only; tabs and line breaks stay).
    static void Trim(std::string &str);

    // Host of a URL: the longest run without "/" and ":" after an optional lower-case
    // "http://" or "https://". Any other scheme is not stripped and comes back as the result.
    static std::string GetDomainFromUrl(const std::string &url);

    // Joins the strings with the character between neighbours.
    static std::string ToString(const std::vector<std::string> &strings, char separator);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_STRING_UTILS_H
