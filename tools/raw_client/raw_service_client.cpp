#include "raw_service_client.h"

#include "message_option.h"
#include "message_parcel.h"

namespace VornTools {
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

RawServiceClient::RawServiceClient(OHOS::sptr<OHOS::IRemoteObject> service) : service_(std::move(service)) {}

CallResult RawServiceClient::Request(const std::string &paramStr, const OHOS::sptr<OHOS::IRemoteObject> &callback,
    const std::u16string &descriptor, uint32_t code) const
{
    OHOS::MessageParcel data;
    data.WriteInterfaceToken(descriptor);
    data.WriteRemoteObject(callback);
    data.WriteString(paramStr);
    return Send(service_, code, data);
}

CallResult RawServiceClient::Event(const std::string &paramStr, const std::u16string &descriptor, uint32_t code) const
{
    OHOS::MessageParcel data;
    data.WriteInterfaceToken(descriptor);
    data.WriteString(paramStr);
    return Send(service_, code, data);
}
} // namespace VornTools
