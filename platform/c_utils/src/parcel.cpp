#include "parcel.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace OHOS {
namespace {
constexpr size_t ALIGNMENT = 4;
constexpr size_t MIN_CAPACITY = 64;
constexpr size_t MAX_PADDABLE = std::numeric_limits<size_t>::max() - ALIGNMENT;
// Smallest encoding of one string element: its Int32 length plus the padded terminator.
constexpr size_t MIN_STRING_WIRE_SIZE = 8;

size_t PaddedSize(size_t size)
{
    return (size + ALIGNMENT - 1) & ~(ALIGNMENT - 1);
}

bool AllZero(const uint8_t *data, size_t size)
{
    return std::all_of(data, data + size, [](uint8_t b) { return b == 0; });
}
} // namespace

Parcel::~Parcel()
{
    FlushBuffer();
}

size_t Parcel::GetDataSize() const
{
    return dataSize_;
}

uintptr_t Parcel::GetData() const
{
    return reinterpret_cast<uintptr_t>(data_);
}

size_t Parcel::GetMaxCapacity() const
{
    return maxDataCapacity_;
}

bool Parcel::SetMaxCapacity(size_t maxCapacity)
{
    if (maxCapacity < dataSize_) {
        return false;
    }
    maxDataCapacity_ = maxCapacity;
    return true;
}

bool Parcel::SetDataCapacity(size_t newCapacity)
{
    if (newCapacity < dataSize_ || newCapacity > maxDataCapacity_) {
        return false;
    }
    if (newCapacity == dataCapacity_) {
        return true;
    }
    if (newCapacity == 0) {
        std::free(data_);
        data_ = nullptr;
        dataCapacity_ = 0;
        return true;
    }
    auto *grown = static_cast<uint8_t *>(std::realloc(data_, newCapacity));
    if (grown == nullptr) {
        return false;
    }
    data_ = grown;
    dataCapacity_ = newCapacity;
    return true;
}

size_t Parcel::GetReadableBytes() const
{
    return dataSize_ - readCursor_;
}

size_t Parcel::GetReadPosition()
{
    return readCursor_;
}

size_t Parcel::GetWritePosition()
{
    return dataSize_;
}

bool Parcel::RewindRead(size_t newPosition)
{
    if (newPosition > dataSize_) {
        return false;
    }
    readCursor_ = newPosition;
    return true;
}

bool Parcel::RewindWrite(size_t offsets)
{
    if (offsets > dataSize_) {
        return false;
    }
    dataSize_ = offsets;
    readCursor_ = std::min(readCursor_, dataSize_);
    return true;
}

void Parcel::FlushBuffer()
{
    std::free(data_);
    data_ = nullptr;
    dataSize_ = 0;
    readCursor_ = 0;
    dataCapacity_ = 0;
}

bool Parcel::EnsureWritable(size_t size)
{
    if (dataSize_ > maxDataCapacity_ || size > maxDataCapacity_ - dataSize_) {
        return false;
    }
    size_t needed = dataSize_ + size;
    if (needed <= dataCapacity_) {
        return true;
    }
    size_t doubled = dataCapacity_ > maxDataCapacity_ / 2 ? maxDataCapacity_ : dataCapacity_ * 2;
    return SetDataCapacity(std::min(std::max({needed, doubled, MIN_CAPACITY}), maxDataCapacity_));
}

bool Parcel::WriteBufferAddTerminator(const void *data, size_t size, size_t typeSize)
{
    if ((data == nullptr && size > 0) || size > MAX_PADDABLE - typeSize) {
        return false;
    }
    size_t padded = PaddedSize(size + typeSize);
    if (!EnsureWritable(padded)) {
        return false;
    }
    // An empty buffer on a parcel that never held data has no storage to copy to or pad.
    if (size > 0) {
        std::memcpy(data_ + dataSize_, data, size);
    }
    if (padded > size) {
        std::memset(data_ + dataSize_ + size, 0, padded - size);
    }
    dataSize_ += padded;
    return true;
}

bool Parcel::WriteBuffer(const void *data, size_t size)
{
    return WriteBufferAddTerminator(data, size, 0);
}

bool Parcel::WriteInt32(int32_t value)
{
    return WriteBuffer(&value, sizeof(value));
}

bool Parcel::WriteUint32(uint32_t value)
{
    return WriteBuffer(&value, sizeof(value));
}

bool Parcel::WriteString(const std::string &value)
{
    size_t start = dataSize_;
    if (value.size() > INT32_MAX || !WriteInt32(static_cast<int32_t>(value.size())) ||
        !WriteBufferAddTerminator(value.data(), value.size(), sizeof(char))) {
        dataSize_ = start;
        return false;
    }
    return true;
}

bool Parcel::WriteString16(const std::u16string &value)
{
    size_t start = dataSize_;
    if (value.size() > INT32_MAX / sizeof(char16_t) || !WriteInt32(static_cast<int32_t>(value.size())) ||
        !WriteBufferAddTerminator(value.data(), value.size() * sizeof(char16_t), sizeof(char16_t))) {
        dataSize_ = start;
        return false;
    }
    return true;
}

bool Parcel::WriteString16Vector(const std::vector<std::u16string> &val)
{
    size_t start = dataSize_;
    bool written = val.size() <= INT32_MAX && WriteInt32(static_cast<int32_t>(val.size()));
    for (auto it = val.begin(); written && it != val.end(); ++it) {
        written = WriteString16(*it);
    }
    if (!written) {
        dataSize_ = start;
    }
    return written;
}

template <typename T> bool Parcel::ReadAligned(T &value)
{
    if (GetReadableBytes() < sizeof(T)) {
        return false;
    }
    std::memcpy(&value, data_ + readCursor_, sizeof(T));
    readCursor_ += sizeof(T);
    return true;
}

bool Parcel::ReadInt32(int32_t &value)
{
    return ReadAligned(value);
}

bool Parcel::ReadUint32(uint32_t &value)
{
    return ReadAligned(value);
}

int32_t Parcel::ReadInt32()
{
    int32_t value = 0;
    ReadInt32(value);
    return value;
}

const uint8_t *Parcel::ReadBuffer(size_t length)
{
    size_t readable = GetReadableBytes();
    if (length > MAX_PADDABLE || PaddedSize(length) > readable || data_ == nullptr) {
        return nullptr;
    }
    const uint8_t *result = data_ + readCursor_;
    readCursor_ += PaddedSize(length);
    return result;
}

// Reads an Int32 count of `unitSize`-byte units followed by the units and a zero terminator
// unit; the count is checked against the bytes that are really there before anything is used.
bool Parcel::ReadLengthPrefixed(size_t unitSize, const uint8_t *&data, size_t &units)
{
    size_t start = readCursor_;
    int32_t length = 0;
    if (!ReadInt32(length)) {
        return false;
    }
    const uint8_t *payload = nullptr;
    size_t count = 0;
    if (length >= 0) {
        count = static_cast<size_t>(length);
        payload = ReadBuffer((count + 1) * unitSize); // count < 2^31: no overflow
    }
    if (payload == nullptr || !AllZero(payload + count * unitSize, unitSize)) {
        readCursor_ = start;
        return false;
    }
    data = payload;
    units = count;
    return true;
}

bool Parcel::ReadString(std::string &value)
{
    const uint8_t *data = nullptr;
    size_t units = 0;
    if (!ReadLengthPrefixed(sizeof(char), data, units)) {
        return false;
    }
    value.assign(reinterpret_cast<const char *>(data), units);
    return true;
}

const std::string Parcel::ReadString()
{
    std::string value;
    ReadString(value);
    return value;
}

bool Parcel::ReadString16(std::u16string &value)
{
    const uint8_t *data = nullptr;
    size_t units = 0;
    if (!ReadLengthPrefixed(sizeof(char16_t), data, units)) {
        return false;
    }
    std::u16string result(units, u'\0');
    std::memcpy(result.data(), data, units * sizeof(char16_t));
    value = std::move(result);
    return true;
}

const std::u16string Parcel::ReadString16()
{
    std::u16string value;
    ReadString16(value);
    return value;
}

bool Parcel::ReadString16Vector(std::vector<std::u16string> *val)
{
    size_t start = readCursor_;
    int32_t length = 0;
    if (val == nullptr || !ReadInt32(length) || length < 0 ||
        static_cast<size_t>(length) > GetReadableBytes() / MIN_STRING_WIRE_SIZE) {
        readCursor_ = start;
        return false;
    }
    std::vector<std::u16string> result(static_cast<size_t>(length));
    for (auto &element : result) {
        if (!ReadString16(element)) {
            readCursor_ = start;
            return false;
        }
    }
    *val = std::move(result);
    return true;
}
} // namespace OHOS
