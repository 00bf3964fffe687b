#include "iremote_broker.h"

namespace OHOS {
BrokerRegistration &BrokerRegistration::Get()
{
    // Never destroyed: proxies in other libraries unregister from their static destructors,
    // which may run after this library's.
    static BrokerRegistration *instance = new BrokerRegistration();
    return *instance;
}

bool BrokerRegistration::Register(const std::u16string &descriptor, const Constructor &creator,
    const BrokerDelegatorBase * /* object */)
{
    if (descriptor.empty() || !creator) {
        return false;
    }
    std::lock_guard<std::mutex> lock(creatorMutex_);
    return creators_.emplace(descriptor, creator).second;
}

void BrokerRegistration::Unregister(const std::u16string &descriptor)
{
    std::lock_guard<std::mutex> lock(creatorMutex_);
    creators_.erase(descriptor);
}

sptr<IRemoteBroker> BrokerRegistration::NewInstance(const std::u16string &descriptor, const sptr<IRemoteObject> &object)
{
    if (object == nullptr) {
        return nullptr;
    }
    if (!object->IsProxyObject()) {
        // A local object answers for itself, but only under its own descriptor.
        return object->GetObjectDescriptor() == descriptor ? object->AsInterface() : nullptr;
    }
    Constructor creator;
    {
        std::lock_guard<std::mutex> lock(creatorMutex_);
        auto it = creators_.find(descriptor);
        if (it == creators_.end()) {
            return nullptr;
        }
        creator = it->second;
    }
    return creator(object);
}
} // namespace OHOS
