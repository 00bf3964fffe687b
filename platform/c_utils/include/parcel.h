#ifndef UTILS_BASE_PARCEL_H
#define UTILS_BASE_PARCEL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "nocopyable.h"

namespace OHOS {
constexpr size_t DEFAULT_CPACITY = 204800; // 200 KiB, the platform's default ceiling

// A flat byte buffer of values, each padded to 4 bytes. Reads never go past the written data:
// a failed read returns false (or a zero/empty value) and leaves the read position unchanged.
class Parcel {
public:
    Parcel() = default;
    virtual ~Parcel();
    DISALLOW_COPY_AND_MOVE(Parcel);

    size_t GetDataSize() const;
    uintptr_t GetData() const;
    size_t GetMaxCapacity() const;
    bool SetMaxCapacity(size_t maxCapacity);
    size_t GetReadableBytes() const;
    size_t GetReadPosition();
    size_t GetWritePosition();
    bool RewindRead(size_t newPosition);
    bool RewindWrite(size_t offsets);
    void FlushBuffer();

    bool WriteInt32(int32_t value);
    bool WriteUint32(uint32_t value);
    bool WriteBuffer(const void *data, size_t size);
    bool WriteString(const std::string &value);
    bool WriteString16(const std::u16string &value);
    bool WriteString16Vector(const std::vector<std::u16string> &val);

    int32_t ReadInt32();
    bool ReadInt32(int32_t &value);
    bool ReadUint32(uint32_t &value);
    const uint8_t *ReadBuffer(size_t length);
    const std::string ReadString();
    bool ReadString(std::string &value);
    const std::u16string ReadString16();
    bool ReadString16(std::u16string &value);
    bool ReadString16Vector(std::vector<std::u16string> *val);

private:
    template <typename T> bool ReadAligned(T &value);
    bool EnsureWritable(size_t size);
    bool SetDataCapacity(size_t newCapacity);
    bool WriteBufferAddTerminator(const void *data, size_t size, size_t typeSize);
    bool ReadLengthPrefixed(size_t unitSize, const uint8_t *&data, size_t &units);

    uint8_t *data_ = nullptr;
    size_t dataSize_ = 0;
    size_t readCursor_ = 0;
    size_t dataCapacity_ = 0;
    size_t maxDataCapacity_ = DEFAULT_CPACITY;
};
} // namespace OHOS

#endif // UTILS_BASE_PARCEL_H
