#ifndef VORN_UTILS_PATH_H
#define VORN_UTILS_PATH_H

#include <cstdint>
#include <string>
#include <vector>

namespace OHOS {
namespace Vorn {
// A path split into components, printable in POSIX or Windows form (drive letters, UNC and the
// long-path prefixes). The service itself only uses the POSIX form.
class Path {
public:
    enum PathType : int32_t {
        WINDOWS = 0,
        POSIX = 1,
    };

    explicit Path(const std::string &path);

    // Replaces the whole value.
    void Set(const std::string &path, PathType type);

    // The long-path prefix follows the stored type, the separator follows the requested form.
    std::string Str(PathType type) const;

    // stat() of the POSIX form; symbolic links are followed.
    bool Exists() const;
    bool IsFile() const;
    uint64_t FileSize() const;

    // Splits at any of the delimiter characters without producing empty tokens, except that an
    // empty text yields one empty token.
    static std::vector<std::string> Tokenize(const std::string &text, const std::string &delimiters);

private:
    void SetWindows(const std::string &path);

    PathType type_ = POSIX;
    std::vector<std::string> components_;
    bool absolute_ = false;
    bool unc_ = false;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_PATH_H
