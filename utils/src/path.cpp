#include "path.h"

#include <cctype>
#include <sys/stat.h>

namespace OHOS {
namespace Vorn {
namespace {
const std::string LONG_PATH_PREFIX = "\\\\?\\";
const std::string LONG_UNC_PATH_PREFIX = "\\\\?\\UNC\\";
const std::string UNC_PREFIX = "\\\\";
const std::string UNC_MARKER = "UNC\\";
// Windows needs the long-path prefix once a path reaches MAX_PATH (260) characters.
constexpr size_t WINDOWS_MAX_PATH = 260;

bool StartsWith(const std::string &text, const std::string &prefix)
{
    return text.compare(0, prefix.size(), prefix) == 0;
}

bool IsSeparator(char c)
{
    return c == '/' || c == '\\';
}
} // namespace

Path::Path(const std::string &path)
{
    Set(path, POSIX);
}

void Path::Set(const std::string &path, PathType type)
{
    type_ = type;
    if (type == WINDOWS) {
        SetWindows(path);
        return;
    }
    components_ = Tokenize(path, "/");
    absolute_ = !path.empty() && path[0] == '/';
}

void Path::SetWindows(const std::string &path)
{
    std::string rest = path;
    if (StartsWith(rest, LONG_PATH_PREFIX)) {
        rest.erase(0, LONG_PATH_PREFIX.size());
    }
    components_.clear();
    absolute_ = false;
    unc_ = false;
    if (rest.size() < 2) {
        // Too short for a drive or a network prefix: relative.
    } else if (StartsWith(rest, UNC_PREFIX)) {
        rest.erase(0, UNC_PREFIX.size());
        unc_ = rest.find_first_of("/\\") != std::string::npos;
        absolute_ = unc_;
    } else if (StartsWith(rest, UNC_MARKER)) {
        rest.erase(0, UNC_MARKER.size());
        absolute_ = true;
        unc_ = true;
    } else if (rest.size() >= 3 && std::isalpha(static_cast<unsigned char>(rest[0])) && rest[1] == ':' &&
        IsSeparator(rest[2])) {
        components_.push_back(rest.substr(0, 2));
        rest.erase(0, 3);
        absolute_ = true;
    }
    const std::vector<std::string> tokens = Tokenize(rest, "/\\");
    components_.insert(components_.end(), tokens.begin(), tokens.end());
}

std::string Path::Str(PathType type) const
{
    std::string out;
    if (absolute_ && type_ == POSIX) {
        out = "/";
    } else if (absolute_) {
        size_t length = unc_ ? UNC_PREFIX.size() : 0;
        for (const auto &component : components_) {
            length += component.size() + 1;
        }
        if (length > WINDOWS_MAX_PATH) {
            out = unc_ ? LONG_UNC_PATH_PREFIX : LONG_PATH_PREFIX;
        } else if (unc_) {
            out = UNC_PREFIX;
        }
    }
    const char separator = type == POSIX ? '/' : '\\';
    for (size_t i = 0; i < components_.size(); ++i) {
        if (i > 0) {
            out += separator;
        }
        out += components_[i];
    }
    return out;
}

bool Path::Exists() const
{
    struct stat sb {};
    return stat(Str(POSIX).c_str(), &sb) == 0;
}

bool Path::IsFile() const
{
    struct stat sb {};
    return stat(Str(POSIX).c_str(), &sb) == 0 && S_ISREG(sb.st_mode);
}

uint64_t Path::FileSize() const
{
    struct stat sb {};
    if (stat(Str(POSIX).c_str(), &sb) != 0) {
        return 0;
    }
    return static_cast<uint64_t>(sb.st_size);
}

std::vector<std::string> Path::Tokenize(const std::string &text, const std::string &delimiters)
{
    std::vector<std::string> tokens;
    size_t start = 0;
    size_t pos = text.find_first_of(delimiters);
    while (true) {
        if (pos == std::string::npos || pos > start) {
            tokens.push_back(text.substr(start, pos == std::string::npos ? std::string::npos : pos - start));
        }
        if (pos == std::string::npos) {
            break;
        }
        start = pos + 1;
        if (start == text.size()) {
            break;
        }
        pos = text.find_first_of(delimiters, start);
    }
    return tokens;
}
} // namespace Vorn
} // namespace OHOS
