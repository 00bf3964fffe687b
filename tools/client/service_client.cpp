#include "service_client.h"

#include "message_option.h"
#include "message_parcel.h"

namespace VornClient {
namespace {
CallResult Send(const OHOS::sptr<OHOS::IRemoteObject> &service, uint32_t code, OHOS::MessageParcel &data)
{
    OHOS::MessageParcel reply;
    OHOS::MessageOption option;
    CallResult outcome;
    outcome.result = service->SendRequest(code, data, reply, option);
    int32_t value = 0;
    if (reply.ReadInt32(value)) {
        outcome.reply = value;
    }
    return outcome;
}
} // namespace

ServiceClient::ServiceClient(OHOS::sptr<OHOS::IRemoteObject> service) : service_(std::move(service)) {}

CallResult ServiceClient::Request(const std::string &paramStr, const OHOS::sptr<OHOS::IRemoteObject> &callback,
    const std::u16string &descriptor, uint32_t code) const
{
    OHOS::MessageParcel data;
    data.WriteInterfaceToken(descriptor);
    data.WriteRemoteObject(callback);
    data.WriteString(paramStr);
    return Send(service_, code, data);
}

CallResult ServiceClient::Event(const std::string &paramStr, const std::u16string &descriptor, uint32_t code) const
{
    OHOS::MessageParcel data;
    data.WriteInterfaceToken(descriptor);
    data.WriteString(paramStr);
    return Send(service_, code, data);
}
} // namespace VornClient
