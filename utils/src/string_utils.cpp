#include "string_utils.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace OHOS {
namespace Vorn {
std::string StringUtils::ToLowerCase(const std::string &str)
{
    std::string lower = str;
    std::transform(lower.begin(), lower.end(), lower.begin(),
        [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::vector<std::string> StringUtils::SplitAllByString(const std::string &str, const std::string &separator)
{
    std::vector<std::string> result;
    // Deliberately no early return: callers rely on a text without the separator coming back twice.
    if (str.size() < separator.size() || str.find(separator) == std::string::npos) {
        result.push_back(str);
    }
    std::string rest = str;
    for (size_t pos = rest.find(separator); pos != std::string::npos; pos = rest.find(separator)) {
        result.push_back(rest.substr(0, pos));
        rest.erase(0, pos + separator.size());
    }
    if (!rest.empty()) {
        result.push_back(rest);
    }
    return result;
}

void StringUtils::Trim(std::string &str)
{
    if (str.empty()) {
        return;
    }
    str.erase(0, str.find_first_not_of(' '));
    const size_t last = str.find_last_not_of(' ');
    str.erase(last == std::string::npos ? 0 : last + 1);
}

// The search of the ECMAScript pattern (?:https?:\/\/)?([^\/:]*), done by hand. The pattern matches
// the empty string, so the search always matches at the start: the optional group takes a
// leading "https://" or "http://" (greedily, and nothing after it can fail), and the capture is
// the run of characters up to the first "/" or ":". std::regex would give the same result, but
// libstdc++ recurses once per repeated character, so a client's long URL overflowed the stack.
std::string StringUtils::GetDomainFromUrl(const std::string &url)
{
    size_t start = 0;
    for (const char *scheme : {"https://", "http://"}) {
        if (url.rfind(scheme, 0) == 0) {
            start = std::char_traits<char>::length(scheme);
            break;
        }
    }
    const size_t end = url.find_first_of("/:", start);
    return url.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

std::string StringUtils::ToString(const std::vector<std::string> &strings, char separator)
{
    std::string joined;
    for (size_t i = 0; i < strings.size(); ++i) {
        if (i > 0) {
            joined += separator;
        }
        joined += strings[i];
    }
    return joined;
}
} // namespace Vorn
} // namespace OHOS
