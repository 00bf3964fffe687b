#include "file_utils.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "path.h"
#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
std::string FileUtils::NormalizedFilePath(const std::string &path)
{
    if (path.empty()) {
        return "";
    }
    std::array<char, PATH_MAX + 1> resolved {};
    if (realpath(path.c_str(), resolved.data()) == nullptr) {
        return "";
    }
    return std::string(resolved.data());
}

int32_t FileUtils::ReadFile(const std::string &path, std::string &content, uint32_t mode)
{
    const Path filePath(path);
    if (!filePath.Exists() || !filePath.IsFile()) {
        return READ_FILE_NOT_FOUND;
    }
    const uint64_t size = filePath.FileSize();
    if (size == 0) {
        return READ_FILE_EMPTY;
    }
    const std::string canonical = NormalizedFilePath(filePath.Str(Path::POSIX));
    if (canonical.empty()) {
        VORN_COMMON_LOGE("ReadFile canonical path fail");
        return READ_FILE_NOT_FOUND;
    }
    std::ifstream file(canonical, static_cast<std::ios_base::openmode>(mode) | std::ios_base::in);
    if (!file.good()) {
        return READ_FILE_EMPTY;
    }
    content.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    file.close();
    if (content.size() != size) {
        content.clear();
        return READ_FILE_SIZE_MISMATCH;
    }
    return READ_FILE_OK;
}
} // namespace Vorn
} // namespace OHOS
