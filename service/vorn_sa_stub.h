#ifndef VORN_SERVICE_VORN_SA_STUB_H
#define VORN_SERVICE_VORN_SA_STUB_H

#include <cstdint>
#include <string>

#include "i_vorn_sa_interface.h"
#include "iremote_stub.h"
#include "message_option.h"
#include "message_parcel.h"
#include "vorn_init_config_parser.h"

namespace OHOS {
namespace Vorn {
bool IsSystemAppCalling();
bool IsSACall();

// The service's IPC front: checks who calls and with which interface token, then decodes the
// two transactions. Handlers return as soon as work is posted; they never wait for the network.
class VornSAStub : public IRemoteStub<IVornSAInterface> {
public:
    VornSAStub();
    ~VornSAStub() override = default;

    int OnRemoteRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option) override;

    int32_t PostVornRequest(const std::string &paramStr, const sptr<IVornRequestCallback> &callback) override;
    int32_t VornOmsaEvent(const std::string &eventId, const std::string &content) override;

    // Runs one request through the engine on a binder-pool thread.
    static int32_t SendNetworkRequest(const VornInitConfigParser::VornRequestInfo &info,
        const sptr<IVornRequestCallback> &callback);

private:
    int32_t HandleGetVornConfigFromServer(MessageParcel &data, MessageParcel &reply);
    int32_t HandleVornOmsaEvent(MessageParcel &data, MessageParcel &reply);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_SERVICE_VORN_SA_STUB_H
