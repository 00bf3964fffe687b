#ifndef VORN_UTILS_VORN_ERROR_CODE_H
#define VORN_UTILS_VORN_ERROR_CODE_H

#include <cstdint>
#include <string>

namespace OHOS {
namespace Vorn {
// Result codes of the service: reply parcels, IPC transaction results and engine futures.
enum VornErrorCodeType : int32_t {
    ERR_FAILED = -1,
    SUCCESS = 0,
    ILLEGAL_APP_CALLING = 2,
    ERR_READ_DESCRIPTOR = 3,
    ERR_PARCEL_READ_PARAM = 4,
    ERR_PARCEL_WRITE = 5,
    ERR_SERVICE_INTERNAL = 6,
};

// Text of a result code: only success has one.
std::string GetVornErrorMessage(int32_t code);
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_VORN_ERROR_CODE_H
