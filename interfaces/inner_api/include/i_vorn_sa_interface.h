#ifndef VORN_INNER_API_I_VORN_SA_INTERFACE_H
#define VORN_INNER_API_I_VORN_SA_INTERFACE_H

#include <cstdint>
#include <string>

#include "i_vorn_request_callback.h"
#include "iremote_broker.h"

namespace OHOS {
namespace Vorn {
// Transaction codes of IVornSAInterface.
enum class VornInterfaceCode : uint32_t {
    GET_VORN_CONFIG_FROM_SERVER = 1,
    VORN_OMSA_EVENT = 2,
};

// What clients reach over IPC: post a request with its callback, or hand over an analytics event.
class IVornSAInterface : public IRemoteBroker {
public:
    DECLARE_INTERFACE_DESCRIPTOR(u"ohos.vorn.IVornSAInterface");

    virtual int32_t PostVornRequest(const std::string &paramStr, const sptr<IVornRequestCallback> &callback) = 0;
    virtual int32_t VornOmsaEvent(const std::string &eventId, const std::string &content) = 0;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_I_VORN_SA_INTERFACE_H
