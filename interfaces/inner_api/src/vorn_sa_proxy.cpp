#include "vorn_sa_proxy.h"

#include <nlohmann/json.hpp>

#include "ipc_types.h"
#include "message_option.h"
#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
VornSAProxy::VornSAProxy(const sptr<IRemoteObject> &remote) : IRemoteProxy<IVornSAInterface>(remote) {}

int32_t VornSAProxy::PostVornRequest(const std::string &paramStr, const sptr<IVornRequestCallback> &callback)
{
    if (callback == nullptr) {
        VORN_LOGE("VornSAProxy::PostVornRequest callback is null");
        return ERR_NULL_OBJECT;
    }
    MessageParcel data;
    if (!data.WriteInterfaceToken(GetDescriptor()) || !data.WriteRemoteObject(callback->AsObject()) ||
        !data.WriteString(paramStr)) {
        VORN_LOGE("VornSAProxy::PostVornRequest write parcel failed");
        return IPC_PROXY_WRITE_PARCEL_ERR;
    }
    return Send(VornInterfaceCode::GET_VORN_CONFIG_FROM_SERVER, data);
}

int32_t VornSAProxy::VornOmsaEvent(const std::string &eventId, const std::string &content)
{
    nlohmann::json event = {{"eventId", eventId}, {"content", content}};
    std::string paramStr;
    try {
        paramStr = event.dump();
    } catch (const nlohmann::json::exception &) {
        // Only text that is not UTF-8 gets here; the service could not read it either.
        VORN_LOGE("VornSAProxy::VornOmsaEvent event is not UTF-8");
        return IPC_PROXY_WRITE_PARCEL_ERR;
    }
    MessageParcel data;
    if (!data.WriteInterfaceToken(GetDescriptor()) || !data.WriteString(paramStr)) {
        VORN_LOGE("VornSAProxy::VornOmsaEvent write parcel failed");
        return IPC_PROXY_WRITE_PARCEL_ERR;
    }
    return Send(VornInterfaceCode::VORN_OMSA_EVENT, data);
}

int32_t VornSAProxy::Send(VornInterfaceCode code, MessageParcel &data)
{
    sptr<IRemoteObject> remote = Remote();
    if (remote == nullptr) {
        VORN_LOGE("VornSAProxy Remote() is null");
        return ERR_NULL_OBJECT;
    }
    MessageParcel reply;
    MessageOption option;
    int result = remote->SendRequest(static_cast<uint32_t>(code), data, reply, option);
    if (result != ERR_NONE) {
        VORN_LOGE("VornSAProxy SendRequest code %{public}u failed, error code: %{public}d", static_cast<uint32_t>(code),
            result);
        return result;
    }
    int32_t serviceCode = 0;
    if (!reply.ReadInt32(serviceCode)) {
        VORN_LOGE("VornSAProxy read reply code failed");
        return ERR_INVALID_REPLY;
    }
    return serviceCode;
}
} // namespace Vorn
} // namespace OHOS
