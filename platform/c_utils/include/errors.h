#ifndef UTILS_BASE_ERRORS_H
#define UTILS_BASE_ERRORS_H

#include <cerrno>

namespace OHOS {
using ErrCode = int;

constexpr ErrCode ErrCodeOffset(unsigned int subsystem, unsigned int module = 0)
{
    constexpr int subsystemBitNum = 21;
    constexpr int moduleBitNum = 16;
    return (subsystem << subsystemBitNum) | (module << moduleBitNum);
}

enum {
    SUBSYS_COMMON = 0,
    SUBSYS_APPEXECFWK = 4,
};

constexpr ErrCode BASE_ERR_OFFSET = ErrCodeOffset(SUBSYS_COMMON);

enum {
    ERR_OK = 0,
    ERR_INVALID_VALUE = BASE_ERR_OFFSET + EINVAL,
    ERR_NAME_NOT_FOUND = BASE_ERR_OFFSET + ENOENT,
    ERR_DEAD_OBJECT = BASE_ERR_OFFSET + EPIPE,
};
} // namespace OHOS

#endif // UTILS_BASE_ERRORS_H
