#ifndef OHOS_IPC_IREMOTE_OBJECT_H
#define OHOS_IPC_IREMOTE_OBJECT_H

#include <cstdint>
#include <string>
#include <vector>

#include "refbase.h"

namespace OHOS {
class IRemoteBroker;
class MessageParcel;
class MessageOption;

class IRemoteObject : public virtual RefBase {
public:
    class DeathRecipient : public virtual RefBase {
    public:
        virtual void OnRemoteDied(const wptr<IRemoteObject> &object) = 0;
    };

    virtual int SendRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option) = 0;
    virtual bool IsProxyObject() const;
    virtual bool IsObjectDead() const;
    virtual bool AddDeathRecipient(const sptr<DeathRecipient> &recipient) = 0;
    virtual bool RemoveDeathRecipient(const sptr<DeathRecipient> &recipient) = 0;

    virtual sptr<IRemoteBroker> AsInterface();
    virtual int Dump(int fd, const std::vector<std::u16string> &args) = 0;

    const std::u16string descriptor_;
    std::u16string GetObjectDescriptor() const;

protected:
    explicit IRemoteObject(std::u16string descriptor = std::u16string());
    ~IRemoteObject() override = default;
};
} // namespace OHOS

#endif // OHOS_IPC_IREMOTE_OBJECT_H
