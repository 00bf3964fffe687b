#include "vorn_request_callback_proxy.h"

#include "message_option.h"
#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
namespace {
// The client gets eight seconds to take a response before the platform gives up on the call.
constexpr int CALLBACK_WAIT_SECONDS = 8;
} // namespace

VornRequestCallbackProxy::VornRequestCallbackProxy(const sptr<IRemoteObject> &remote)
    : IRemoteProxy<IVornRequestCallback>(remote)
{
}

bool VornRequestCallbackProxy::WriteInterfaceToken(MessageParcel &data)
{
    if (!data.WriteInterfaceToken(VornRequestCallbackProxy::GetDescriptor())) {
        VORN_LOGE("VornRequestCallbackProxy write interface token failed");
        return false;
    }
    return true;
}

void VornRequestCallbackProxy::OnResponse(const std::string &response)
{
    MessageParcel data;
    MessageParcel reply;
    MessageOption option(MessageOption::TF_SYNC, CALLBACK_WAIT_SECONDS);
    if (!WriteInterfaceToken(data)) {
        return;
    }
    sptr<IRemoteObject> remote = Remote();
    if (remote == nullptr) {
        VORN_LOGE("Remote() is null");
        return;
    }
    // A response that does not fit the parcel would reach the client as an empty string.
    if (!data.WriteString(response)) {
        VORN_LOGE("VornRequestCallbackProxy write response of %{public}lu bytes failed",
            static_cast<unsigned long>(response.size()));
        return;
    }
    VORN_LOGI("VornRequestCallbackProxy::OnResponse SendRequest");
    int32_t result = remote->SendRequest(ON_RESPONSE, data, reply, option);
    if (result != 0) {
        VORN_LOGE("VornRequestCallbackProxy::OnResponse SendRequest is failed, error code: %{public}d", result);
    }
}
} // namespace Vorn
} // namespace OHOS
