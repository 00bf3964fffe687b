#ifndef VORN_SERVICE_VORN_REQUEST_CALLBACK_PROXY_H
#define VORN_SERVICE_VORN_REQUEST_CALLBACK_PROXY_H

#include <string>

#include "i_vorn_request_callback.h"
#include "iremote_proxy.h"
#include "message_parcel.h"

namespace OHOS {
namespace Vorn {
// How the service reaches a client's callback object in the client's process.
class VornRequestCallbackProxy : public IRemoteProxy<IVornRequestCallback> {
public:
    explicit VornRequestCallbackProxy(const sptr<IRemoteObject> &remote);
    ~VornRequestCallbackProxy() override = default;

    void OnResponse(const std::string &response) override;

private:
    static bool WriteInterfaceToken(MessageParcel &data);

    static inline BrokerDelegator<VornRequestCallbackProxy> delegator_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_SERVICE_VORN_REQUEST_CALLBACK_PROXY_H
