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
    SUBSYS_AAFWK = 1,
    SUBSYS_ACCOUNT = 2,
    SUBSYS_AI = 3,
    SUBSYS_APPEXECFWK = 4,
    SUBSYS_APPLICATIONS = 5,
};

constexpr ErrCode BASE_ERR_OFFSET = ErrCodeOffset(SUBSYS_COMMON);

enum {
    ERR_OK = 0,
    ERR_NO_MEMORY = BASE_ERR_OFFSET + ENOMEM,
    ERR_INVALID_OPERATION = BASE_ERR_OFFSET + ENOSYS,
    ERR_INVALID_VALUE = BASE_ERR_OFFSET + EINVAL,
    ERR_NAME_NOT_FOUND = BASE_ERR_OFFSET + ENOENT,
    ERR_PERMISSION_DENIED = BASE_ERR_OFFSET + EPERM,
    ERR_NO_INIT = BASE_ERR_OFFSET + ENODEV,
    ERR_ALREADY_EXISTS = BASE_ERR_OFFSET + EEXIST,
    ERR_DEAD_OBJECT = BASE_ERR_OFFSET + EPIPE,
    ERR_OVERFLOW = BASE_ERR_OFFSET + EOVERFLOW,
    ERR_ENOUGH_DATA = BASE_ERR_OFFSET + ENODATA,
    ERR_WOULD_BLOCK = BASE_ERR_OFFSET + EWOULDBLOCK,
    ERR_TIMED_OUT = BASE_ERR_OFFSET + ETIMEDOUT
};

#define SUCCEEDED(errCode) ((errCode) == ERR_OK)
#define FAILED(errCode) ((errCode) != ERR_OK)
} // namespace OHOS

#endif // UTILS_BASE_ERRORS_H
