#include "message_parcel.h"

#include <fcntl.h>
#include <unistd.h>

#include "ipc_host_access.h"
#include "iremote_object.h"

namespace OHOS {
namespace {
// Markers in the byte stream; the side tables say what is really at a marker's position.
constexpr uint32_t OBJECT_MARKER = 0x4f424a31; // "OBJ1"
constexpr uint32_t NULL_OBJECT_MARKER = 0x4e554c4c; // "NULL"
constexpr uint32_t FD_MARKER = 0x46445331; // "FDS1"
constexpr int32_t STRICT_MODE_POLICY = 0x100;
constexpr int32_t WORK_SOURCE = 0;

std::shared_ptr<const int> OwnDuplicate(int fd)
{
    int copy = fcntl(fd, F_DUPFD_CLOEXEC, 0);
    if (copy < 0) {
        return nullptr;
    }
    return std::shared_ptr<const int>(new int(copy), [](const int *owned) {
        close(*owned);
        delete owned;
    });
}
} // namespace

MessageParcel::MessageParcel() = default;

MessageParcel::~MessageParcel() = default;

bool MessageParcel::WriteRemoteObject(const sptr<IRemoteObject> &object)
{
    if (object == nullptr) {
        return WriteUint32(NULL_OBJECT_MARKER);
    }
    size_t position = GetWritePosition();
    if (!WriteUint32(OBJECT_MARKER)) {
        return false;
    }
    objects_[position] = object;
    return true;
}

sptr<IRemoteObject> MessageParcel::ReadRemoteObject()
{
    size_t position = GetReadPosition();
    uint32_t marker = 0;
    if (!ReadUint32(marker) || marker != OBJECT_MARKER) {
        return nullptr;
    }
    auto it = objects_.find(position);
    if (it == objects_.end()) {
        return nullptr;
    }
    return IpcHostAccess::RemoteView(it->second);
}

bool MessageParcel::WriteFileDescriptor(int fd)
{
    if (fd < 0) {
        return false;
    }
    std::shared_ptr<const int> owned = OwnDuplicate(fd);
    size_t position = GetWritePosition();
    if (owned == nullptr || !WriteUint32(FD_MARKER)) {
        return false;
    }
    fds_[position] = std::move(owned);
    return true;
}

int MessageParcel::ReadFileDescriptor()
{
    size_t position = GetReadPosition();
    uint32_t marker = 0;
    if (!ReadUint32(marker) || marker != FD_MARKER) {
        return -1;
    }
    auto it = fds_.find(position);
    if (it == fds_.end()) {
        return -1;
    }
    return fcntl(*it->second, F_DUPFD_CLOEXEC, 0);
}

bool MessageParcel::WriteInterfaceToken(std::u16string name)
{
    size_t start = GetWritePosition();
    if (!WriteInt32(STRICT_MODE_POLICY) || !WriteInt32(WORK_SOURCE) || !WriteString16(name)) {
        RewindWrite(start);
        return false;
    }
    return true;
}

std::u16string MessageParcel::ReadInterfaceToken()
{
    size_t start = GetReadPosition();
    int32_t strictModePolicy = 0;
    int32_t workSource = 0;
    std::u16string token;
    if (!ReadInt32(strictModePolicy) || !ReadInt32(workSource) || !ReadString16(token)) {
        RewindRead(start);
        return std::u16string();
    }
    return token;
}

bool MessageParcel::Append(MessageParcel &data)
{
    size_t base = GetWritePosition();
    size_t size = data.GetDataSize();
    if (size == 0) {
        return true;
    }
    if (!WriteBuffer(reinterpret_cast<const void *>(data.GetData()), size)) {
        return false;
    }
    for (const auto &[position, object] : data.objects_) {
        objects_[base + position] = object;
    }
    for (const auto &[position, fd] : data.fds_) {
        fds_[base + position] = fd;
    }
    return true;
}

void MessageParcel::Reset()
{
    FlushBuffer();
    objects_.clear();
    fds_.clear();
}
} // namespace OHOS
