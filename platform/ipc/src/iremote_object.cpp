#include "iremote_object.h"

#include "iremote_broker.h"

namespace OHOS {
IRemoteObject::IRemoteObject(std::u16string descriptor) : descriptor_(std::move(descriptor)) {}

bool IRemoteObject::IsProxyObject() const
{
    return true;
}

bool IRemoteObject::IsObjectDead() const
{
    return false;
}

std::u16string IRemoteObject::GetObjectDescriptor() const
{
    return descriptor_;
}

sptr<IRemoteBroker> IRemoteObject::AsInterface()
{
    return nullptr;
}
} // namespace OHOS
