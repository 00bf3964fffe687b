#ifndef VORN_INNER_API_VORN_SA_PROXY_H
#define VORN_INNER_API_VORN_SA_PROXY_H

#include <cstdint>
#include <string>

#include "i_vorn_sa_interface.h"
#include "iremote_proxy.h"
#include "message_parcel.h"

namespace OHOS {
namespace Vorn {
// The service as a client process holds it. It writes exactly the two transactions the service
// reads (the interface token first, then the callback and the request text, or the event text)
// and returns the service's code: the transaction result when the call failed, otherwise the
// code the service wrote into the reply.
class VornSAProxy : public IRemoteProxy<IVornSAInterface> {
public:
    explicit VornSAProxy(const sptr<IRemoteObject> &remote);
    ~VornSAProxy() override = default;

    int32_t PostVornRequest(const std::string &paramStr, const sptr<IVornRequestCallback> &callback) override;
    // Sends the event as the JSON object {"content": ..., "eventId": ...} the service reads.
    int32_t VornOmsaEvent(const std::string &eventId, const std::string &content) override;

private:
    int32_t Send(VornInterfaceCode code, MessageParcel &data);

    static inline BrokerDelegator<VornSAProxy> delegator_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_VORN_SA_PROXY_H
