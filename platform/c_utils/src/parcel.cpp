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

Parcelable::Parcelable() : Parcelable(false) {}

Parcelable::Parcelable(bool asRemote) : asRemote_(asRemote), behavior_(0) {}

void *DefaultAllocator::Realloc(void *data, size_t newSize)
{
    return std::realloc(data, newSize);
}

void *DefaultAllocator::Alloc(size_t size)
{
    return std::malloc(size);
}

void DefaultAllocator::Dealloc(void *data)
{
    std::free(data);
}

Parcel::Parcel() : Parcel(nullptr) {}

Parcel::Parcel(Allocator *allocator) : allocator_(allocator != nullptr ? allocator : new DefaultAllocator()) {}

Parcel::~Parcel()
{
    FlushBuffer();
    delete allocator_;
}

size_t Parcel::GetDataSize() const
{
    return dataSize_;
}

uintptr_t Parcel::GetData() const
{
    return reinterpret_cast<uintptr_t>(data_);
}

size_t Parcel::GetDataCapacity() const
{
    return dataCapacity_;
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
        allocator_->Dealloc(data_);
        data_ = nullptr;
        dataCapacity_ = 0;
        return true;
    }
    auto *grown = static_cast<uint8_t *>(allocator_->Realloc(data_, newCapacity));
    if (grown == nullptr) {
        return false;
    }
    data_ = grown;
    dataCapacity_ = newCapacity;
    return true;
}

size_t Parcel::GetWritableBytes() const
{
    return dataCapacity_ - dataSize_;
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

void Parcel::SkipBytes(size_t bytes)
{
    size_t readable = GetReadableBytes();
    readCursor_ += (bytes > MAX_PADDABLE || PaddedSize(bytes) > readable) ? readable : PaddedSize(bytes);
}

void Parcel::FlushBuffer()
{
    allocator_->Dealloc(data_);
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

bool Parcel::WriteUnpadBuffer(const void *data, size_t size)
{
    return WriteBuffer(data, size);
}

template <typename T>
bool Parcel::WriteAligned(T value)
{
    static_assert(sizeof(T) % ALIGNMENT == 0, "wire values are whole 4-byte words");
    return WriteBuffer(&value, sizeof(T));
}

bool Parcel::WriteBool(bool value)
{
    return WriteAligned<int32_t>(value ? 1 : 0);
}

bool Parcel::WriteInt8(int8_t value)
{
    return WriteAligned<int32_t>(value);
}

bool Parcel::WriteInt16(int16_t value)
{
    return WriteAligned<int32_t>(value);
}

bool Parcel::WriteInt32(int32_t value)
{
    return WriteAligned(value);
}

bool Parcel::WriteInt64(int64_t value)
{
    return WriteAligned(value);
}

bool Parcel::WriteUint8(uint8_t value)
{
    return WriteAligned<uint32_t>(value);
}

bool Parcel::WriteUint16(uint16_t value)
{
    return WriteAligned<uint32_t>(value);
}

bool Parcel::WriteUint32(uint32_t value)
{
    return WriteAligned(value);
}

bool Parcel::WriteUint64(uint64_t value)
{
    return WriteAligned(value);
}

bool Parcel::WriteFloat(float value)
{
    return WriteAligned(value);
}

bool Parcel::WriteDouble(double value)
{
    return WriteAligned(value);
}

bool Parcel::WriteCString(const char *value)
{
    return value != nullptr && WriteBuffer(value, std::strlen(value) + 1);
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

bool Parcel::WriteParcelable(const Parcelable *object)
{
    if (object == nullptr) {
        return WriteInt32(0);
    }
    size_t start = dataSize_;
    bool written = WriteInt32(1) && (object->asRemote_ ? WriteRemoteObject(object) : object->Marshalling(*this));
    if (!written) {
        dataSize_ = start;
    }
    return written;
}

bool Parcel::WriteStrongParcelable(const sptr<Parcelable> &object)
{
    if (object != nullptr) {
        object->SetBehavior(Parcelable::BehaviorFlag::HOLD_OBJECT);
    }
    return WriteParcelable(object.GetRefPtr());
}

bool Parcel::WriteRemoteObject(const Parcelable *object)
{
    return object != nullptr && object->Marshalling(*this);
}

template <typename T, typename Writer>
bool Parcel::WriteVector(const std::vector<T> &val, Writer writer)
{
    if (val.size() > INT32_MAX) {
        return false;
    }
    size_t start = dataSize_;
    bool written = WriteInt32(static_cast<int32_t>(val.size()));
    for (auto it = val.begin(); written && it != val.end(); ++it) {
        written = writer(*it);
    }
    if (!written) {
        dataSize_ = start;
    }
    return written;
}

bool Parcel::WriteBoolVector(const std::vector<bool> &val)
{
    return WriteVector(val, [this](bool v) { return WriteBool(v); });
}

bool Parcel::WriteInt32Vector(const std::vector<int32_t> &val)
{
    return WriteVector(val, [this](int32_t v) { return WriteInt32(v); });
}

bool Parcel::WriteInt64Vector(const std::vector<int64_t> &val)
{
    return WriteVector(val, [this](int64_t v) { return WriteInt64(v); });
}

bool Parcel::WriteUInt32Vector(const std::vector<uint32_t> &val)
{
    return WriteVector(val, [this](uint32_t v) { return WriteUint32(v); });
}

bool Parcel::WriteStringVector(const std::vector<std::string> &val)
{
    return WriteVector(val, [this](const std::string &v) { return WriteString(v); });
}

bool Parcel::WriteString16Vector(const std::vector<std::u16string> &val)
{
    return WriteVector(val, [this](const std::u16string &v) { return WriteString16(v); });
}

template <typename T>
bool Parcel::ReadAligned(T &value)
{
    static_assert(sizeof(T) % ALIGNMENT == 0, "wire values are whole 4-byte words");
    if (GetReadableBytes() < sizeof(T)) {
        return false;
    }
    std::memcpy(&value, data_ + readCursor_, sizeof(T));
    readCursor_ += sizeof(T);
    return true;
}

bool Parcel::ReadBool(bool &value)
{
    int32_t wire = 0;
    if (!ReadAligned(wire)) {
        return false;
    }
    value = wire != 0;
    return true;
}

bool Parcel::ReadInt8(int8_t &value)
{
    int32_t wire = 0;
    if (!ReadAligned(wire)) {
        return false;
    }
    value = static_cast<int8_t>(wire);
    return true;
}

bool Parcel::ReadInt16(int16_t &value)
{
    int32_t wire = 0;
    if (!ReadAligned(wire)) {
        return false;
    }
    value = static_cast<int16_t>(wire);
    return true;
}

bool Parcel::ReadInt32(int32_t &value)
{
    return ReadAligned(value);
}

bool Parcel::ReadInt64(int64_t &value)
{
    return ReadAligned(value);
}

bool Parcel::ReadUint8(uint8_t &value)
{
    uint32_t wire = 0;
    if (!ReadAligned(wire)) {
        return false;
    }
    value = static_cast<uint8_t>(wire);
    return true;
}

bool Parcel::ReadUint16(uint16_t &value)
{
    uint32_t wire = 0;
    if (!ReadAligned(wire)) {
        return false;
    }
    value = static_cast<uint16_t>(wire);
    return true;
}

bool Parcel::ReadUint32(uint32_t &value)
{
    return ReadAligned(value);
}

bool Parcel::ReadUint64(uint64_t &value)
{
    return ReadAligned(value);
}

bool Parcel::ReadFloat(float &value)
{
    return ReadAligned(value);
}

bool Parcel::ReadDouble(double &value)
{
    return ReadAligned(value);
}

namespace {
template <typename T, typename Reader>
T ReadOrZero(Reader reader)
{
    T value{};
    reader(value);
    return value;
}
} // namespace

bool Parcel::ReadBool()
{
    return ReadOrZero<bool>([this](bool &v) { return ReadBool(v); });
}

int8_t Parcel::ReadInt8()
{
    return ReadOrZero<int8_t>([this](int8_t &v) { return ReadInt8(v); });
}

int16_t Parcel::ReadInt16()
{
    return ReadOrZero<int16_t>([this](int16_t &v) { return ReadInt16(v); });
}

int32_t Parcel::ReadInt32()
{
    return ReadOrZero<int32_t>([this](int32_t &v) { return ReadInt32(v); });
}

int64_t Parcel::ReadInt64()
{
    return ReadOrZero<int64_t>([this](int64_t &v) { return ReadInt64(v); });
}

uint8_t Parcel::ReadUint8()
{
    return ReadOrZero<uint8_t>([this](uint8_t &v) { return ReadUint8(v); });
}

uint16_t Parcel::ReadUint16()
{
    return ReadOrZero<uint16_t>([this](uint16_t &v) { return ReadUint16(v); });
}

uint32_t Parcel::ReadUint32()
{
    return ReadOrZero<uint32_t>([this](uint32_t &v) { return ReadUint32(v); });
}

uint64_t Parcel::ReadUint64()
{
    return ReadOrZero<uint64_t>([this](uint64_t &v) { return ReadUint64(v); });
}

float Parcel::ReadFloat()
{
    return ReadOrZero<float>([this](float &v) { return ReadFloat(v); });
}

double Parcel::ReadDouble()
{
    return ReadOrZero<double>([this](double &v) { return ReadDouble(v); });
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

const char *Parcel::ReadCString()
{
    size_t readable = GetReadableBytes();
    if (readable == 0) {
        return nullptr;
    }
    const uint8_t *start = data_ + readCursor_;
    const void *end = std::memchr(start, '\0', readable);
    if (end == nullptr) {
        return nullptr;
    }
    size_t length = static_cast<size_t>(static_cast<const uint8_t *>(end) - start) + 1;
    return reinterpret_cast<const char *>(ReadBuffer(length));
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

template <typename T, typename Reader>
bool Parcel::ReadVector(std::vector<T> *val, Reader reader, size_t minWireSize)
{
    if (val == nullptr) {
        return false;
    }
    size_t start = readCursor_;
    int32_t length = 0;
    if (!ReadInt32(length) || length < 0 || static_cast<size_t>(length) > GetReadableBytes() / minWireSize) {
        readCursor_ = start;
        return false;
    }
    std::vector<T> result;
    result.reserve(static_cast<size_t>(length));
    for (int32_t i = 0; i < length; ++i) {
        T element{};
        if (!reader(element)) {
            readCursor_ = start;
            return false;
        }
        result.push_back(std::move(element));
    }
    *val = std::move(result);
    return true;
}

bool Parcel::ReadBoolVector(std::vector<bool> *val)
{
    return ReadVector(val, [this](bool &v) { return ReadBool(v); }, sizeof(int32_t));
}

bool Parcel::ReadInt32Vector(std::vector<int32_t> *val)
{
    return ReadVector(val, [this](int32_t &v) { return ReadInt32(v); }, sizeof(int32_t));
}

bool Parcel::ReadInt64Vector(std::vector<int64_t> *val)
{
    return ReadVector(val, [this](int64_t &v) { return ReadInt64(v); }, sizeof(int64_t));
}

bool Parcel::ReadUInt32Vector(std::vector<uint32_t> *val)
{
    return ReadVector(val, [this](uint32_t &v) { return ReadUint32(v); }, sizeof(uint32_t));
}

bool Parcel::ReadStringVector(std::vector<std::string> *val)
{
    return ReadVector(val, [this](std::string &v) { return ReadString(v); }, MIN_STRING_WIRE_SIZE);
}

bool Parcel::ReadString16Vector(std::vector<std::u16string> *val)
{
    return ReadVector(val, [this](std::u16string &v) { return ReadString16(v); }, MIN_STRING_WIRE_SIZE);
}
} // namespace OHOS
