#ifndef OHOS_IPC_MESSAGE_PARCEL_H
#define OHOS_IPC_MESSAGE_PARCEL_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>

#include "parcel.h"
#include "refbase.h"

namespace OHOS {
class IRemoteObject;

// A Parcel that can also carry remote objects and file descriptors. Each one is recorded in a
// side table keyed by the position of its marker in the bytes, like the driver's offsets
// table, so bytes that merely look like a marker never turn into an object.
class MessageParcel : public Parcel {
public:
    MessageParcel();
    ~MessageParcel() override;

    bool WriteRemoteObject(const sptr<IRemoteObject> &object);
    // Gives what a receiving process holds: a proxy for any stub or proxy written, null for a
    // null object or a damaged entry.
    sptr<IRemoteObject> ReadRemoteObject();

    bool WriteFileDescriptor(int fd);
    // A new descriptor owned by the caller, or -1.
    int ReadFileDescriptor();

    bool WriteInterfaceToken(std::u16string name);
    std::u16string ReadInterfaceToken();

    bool Append(MessageParcel &data);

private:
    friend class IPCObjectProxy;
    void Reset();

    std::map<size_t, sptr<IRemoteObject>> objects_;
    std::map<size_t, std::shared_ptr<const int>> fds_;
};
} // namespace OHOS

#endif // OHOS_IPC_MESSAGE_PARCEL_H
