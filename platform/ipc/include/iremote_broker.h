#ifndef OHOS_IPC_IREMOTE_BROKER_H
#define OHOS_IPC_IREMOTE_BROKER_H

#include <functional>
#include <map>
#include <mutex>
#include <new>
#include <string>

#include "iremote_object.h"
#include "nocopyable.h"
#include "refbase.h"

namespace OHOS {
class IRemoteBroker : public virtual RefBase {
public:
    IRemoteBroker() = default;
    ~IRemoteBroker() override = default;
    virtual sptr<IRemoteObject> AsObject() = 0;
};

class BrokerDelegatorBase {
public:
    BrokerDelegatorBase() = default;
    virtual ~BrokerDelegatorBase() = default;

    bool isSoUnloaded = false;
    std::u16string descriptor_;
};

#define DECLARE_INTERFACE_DESCRIPTOR(DESCRIPTOR)                                                                       \
    static constexpr const char16_t *metaDescriptor_ = DESCRIPTOR;                                                     \
    static inline const std::u16string GetDescriptor()                                                                 \
    {                                                                                                                  \
        return metaDescriptor_;                                                                                        \
    }

// The process-wide table from interface descriptor to proxy constructor.
class BrokerRegistration {
    using Constructor = std::function<sptr<IRemoteBroker>(const sptr<IRemoteObject> &object)>;

public:
    static BrokerRegistration &Get();
    bool Register(const std::u16string &descriptor, const Constructor &creator, const BrokerDelegatorBase *object);
    void Unregister(const std::u16string &descriptor);
    sptr<IRemoteBroker> NewInstance(const std::u16string &descriptor, const sptr<IRemoteObject> &object);

private:
    BrokerRegistration() = default;
    ~BrokerRegistration() = default;
    DISALLOW_COPY_AND_MOVE(BrokerRegistration);

    std::mutex creatorMutex_;
    std::map<std::u16string, Constructor> creators_;
};

template <typename T> class BrokerCreator {
public:
    sptr<IRemoteBroker> operator()(const sptr<IRemoteObject> &object)
    {
        T *proxy = new (std::nothrow) T(object);
        if (proxy == nullptr) {
            return nullptr;
        }
        return static_cast<IRemoteBroker *>(proxy);
    }
};

// Registers T (a proxy class) for its interface descriptor while it lives.
template <typename T> class BrokerDelegator : public BrokerDelegatorBase {
public:
    BrokerDelegator();
    ~BrokerDelegator() override;

private:
    DISALLOW_COPY_AND_MOVE(BrokerDelegator);
};

template <typename T> BrokerDelegator<T>::BrokerDelegator()
{
    const std::u16string descriptor = T::GetDescriptor();
    if (BrokerRegistration::Get().Register(descriptor, BrokerCreator<T>(), this)) {
        descriptor_ = descriptor;
    }
}

template <typename T> BrokerDelegator<T>::~BrokerDelegator()
{
    if (!isSoUnloaded && !descriptor_.empty()) {
        BrokerRegistration::Get().Unregister(descriptor_);
    }
}

template <typename INTERFACE> inline sptr<INTERFACE> iface_cast(const sptr<IRemoteObject> &object)
{
    const std::u16string descriptor = INTERFACE::GetDescriptor();
    sptr<IRemoteBroker> broker = BrokerRegistration::Get().NewInstance(descriptor, object);
    return static_cast<INTERFACE *>(broker.GetRefPtr());
}
} // namespace OHOS

#endif // OHOS_IPC_IREMOTE_BROKER_H
