#ifndef VORN_TOOLS_RAW_CLIENT_RAW_SERVICE_CLIENT_H
#define VORN_TOOLS_RAW_CLIENT_RAW_SERVICE_CLIENT_H

#include <cstdint>
#include <optional>
#include <string>

#include "i_vorn_sa_interface.h"
#include "iremote_object.h"

namespace VornTools {
struct CallResult {
    int result = 0; // the transaction result
    std::optional<int32_t> reply; // the first Int32 of the reply parcel, when it holds one
};

// Writes the service's two transactions by hand, with any token and code, so that the
// service's refusals can be exercised; the client kit's proxy only writes correct ones. Used by
// vornctl and the tests.
class RawServiceClient {
public:
    explicit RawServiceClient(OHOS::sptr<OHOS::IRemoteObject> service);

    CallResult Request(const std::string &paramStr, const OHOS::sptr<OHOS::IRemoteObject> &callback,
        const std::u16string &descriptor = OHOS::Vorn::IVornSAInterface::GetDescriptor(),
        uint32_t code = static_cast<uint32_t>(OHOS::Vorn::VornInterfaceCode::GET_VORN_CONFIG_FROM_SERVER)) const;
    CallResult Event(const std::string &paramStr,
        const std::u16string &descriptor = OHOS::Vorn::IVornSAInterface::GetDescriptor(),
        uint32_t code = static_cast<uint32_t>(OHOS::Vorn::VornInterfaceCode::VORN_OMSA_EVENT)) const;

private:
    OHOS::sptr<OHOS::IRemoteObject> service_;
};
} // namespace VornTools

#endif // VORN_TOOLS_RAW_CLIENT_RAW_SERVICE_CLIENT_H
