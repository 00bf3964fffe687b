#include "vorn_request_callback_stub.h"

#include "ipc_types.h"
#include "message_parcel.h"
#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
VornRequestCallbackStub::VornRequestCallbackStub(Handler handler) : handler_(std::move(handler)) {}

int VornRequestCallbackStub::OnRemoteRequest(uint32_t code, MessageParcel &data, MessageParcel &reply,
    MessageOption &option)
{
    if (code != ON_RESPONSE) {
        return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
    }
    if (data.ReadInterfaceToken() != GetDescriptor()) {
        VORN_LOGE("VornRequestCallbackStub read interface token failed");
        return ERR_INVALID_DATA;
    }
    OnResponse(data.ReadString());
    return ERR_NONE;
}

void VornRequestCallbackStub::OnResponse(const std::string &response)
{
    if (handler_) {
        handler_(response);
    }
}
} // namespace Vorn
} // namespace OHOS
