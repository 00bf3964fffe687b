#include "iremote_object.h"

#include "iremote_broker.h"
#include "message_parcel.h"

namespace OHOS {
IRemoteObject::IRemoteObject(std::u16string descriptor) : descriptor_(std::move(descriptor))
{
    // Parcelable is a virtual base, constructed by the most derived class; mark it here.
    asRemote_ = true;
}

bool IRemoteObject::IsProxyObject() const
{
    return true;
}

bool IRemoteObject::IsObjectDead() const
{
    return false;
}

bool IRemoteObject::CheckObjectLegality() const
{
    return false;
}

std::u16string IRemoteObject::GetInterfaceDescriptor()
{
    return descriptor_;
}

std::u16string IRemoteObject::GetObjectDescriptor() const
{
    return descriptor_;
}

sptr<IRemoteBroker> IRemoteObject::AsInterface()
{
    return nullptr;
}

bool IRemoteObject::Marshalling(Parcel &parcel) const
{
    auto *messageParcel = dynamic_cast<MessageParcel *>(&parcel);
    return messageParcel != nullptr && messageParcel->WriteRemoteObject(const_cast<IRemoteObject *>(this));
}

sptr<IRemoteObject> IRemoteObject::Unmarshalling(Parcel &parcel)
{
    auto *messageParcel = dynamic_cast<MessageParcel *>(&parcel);
    return messageParcel != nullptr ? messageParcel->ReadRemoteObject() : nullptr;
}
} // namespace OHOS
