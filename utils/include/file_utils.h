#ifndef VORN_UTILS_FILE_UTILS_H
#define VORN_UTILS_FILE_UTILS_H

#include <cstdint>
#include <string>

namespace OHOS {
namespace Vorn {
// Reads small configuration files whole, through a canonical path, and checks that exactly the
// size the file system reported was read.
class FileUtils {
public:
    static constexpr int32_t READ_FILE_OK = 0;
    // Missing, not a regular file, or no canonical path.
    static constexpr int32_t READ_FILE_NOT_FOUND = 1;
    // Empty, or it could not be opened.
    static constexpr int32_t READ_FILE_EMPTY = 2;
    // The file changed size while it was read; the content is emptied.
    static constexpr int32_t READ_FILE_SIZE_MISMATCH = 3;

    // Canonical absolute path by realpath(), or "" on failure.
    static std::string NormalizedFilePath(const std::string &path);

    // `mode` is a std::ios_base::openmode (binary and the like); input is always added. The content
    // is left untouched unless the file could be opened and read.
    static int32_t ReadFile(const std::string &path, std::string &content, uint32_t mode);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_FILE_UTILS_H
