#ifndef OHOS_IPC_IREMOTE_OBJECT_H
#define OHOS_IPC_IREMOTE_OBJECT_H

#include <cstdint>
#include <string>
#include <vector>

#include "parcel.h"
#include "refbase.h"
#include "string_ex.h"

namespace OHOS {
class IRemoteBroker;
class MessageParcel;
class MessageOption;

inline std::u16string to_utf16(const std::string &str)
{
    return Str8ToStr16(str);
}

class IRemoteObject : public virtual Parcelable, public virtual RefBase {
public:
    enum { IF_PROT_DEFAULT, IF_PROT_BINDER = IF_PROT_DEFAULT, IF_PROT_DATABUS, IF_PROT_ERROR };

    class DeathRecipient : public virtual RefBase {
    public:
        virtual void OnRemoteDied(const wptr<IRemoteObject> &object) = 0;
    };

    virtual int32_t GetObjectRefCount() = 0;
    virtual int SendRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option) = 0;
    virtual bool IsProxyObject() const;
    virtual bool IsObjectDead() const;
    virtual bool CheckObjectLegality() const;
    virtual std::u16string GetInterfaceDescriptor();
    virtual bool AddDeathRecipient(const sptr<DeathRecipient> &recipient) = 0;
    virtual bool RemoveDeathRecipient(const sptr<DeathRecipient> &recipient) = 0;

    // Only a MessageParcel can carry a remote object; any other parcel refuses it.
    bool Marshalling(Parcel &parcel) const override;
    static sptr<IRemoteObject> Unmarshalling(Parcel &parcel);

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
