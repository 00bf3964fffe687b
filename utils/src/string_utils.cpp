#include "string_utils.h"

#include <algorithm>
#include <cctype>
#include <regex>

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

std::string StringUtils::GetDomainFromUrl(const std::string &url)
{
    if (url.empty()) {
        return "";
    }
    const std::regex pattern(R"((?:https?:\/\/)?([^\/:]*))", std::regex::ECMAScript | std::regex::optimize);
    std::smatch match;
    if (!std::regex_search(url, match, pattern) || !match[1].matched) {
        return "";
    }
    return match[1].str();
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
