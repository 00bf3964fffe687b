#ifndef VORN_INNER_API_I_VORN_REQUEST_CALLBACK_H
#define VORN_INNER_API_I_VORN_REQUEST_CALLBACK_H

#include <cstdint>
#include <string>

#include "iremote_broker.h"

namespace OHOS {
namespace Vorn {
// The client's callback: receives each response of a request as one JSON text.
class IVornRequestCallback : public IRemoteBroker {
public:
    DECLARE_INTERFACE_DESCRIPTOR(u"OHOS.Vorn.IVornRequestCallback");

    static constexpr uint32_t ON_RESPONSE = 0;

    virtual void OnResponse(const std::string &response) = 0;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_I_VORN_REQUEST_CALLBACK_H
