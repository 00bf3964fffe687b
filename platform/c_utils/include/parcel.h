#ifndef UTILS_BASE_PARCEL_H
#define UTILS_BASE_PARCEL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "nocopyable.h"
#include "refbase.h"

namespace OHOS {
class Parcel;

class Parcelable : public virtual RefBase {
public:
    enum BehaviorFlag { IPC = 0x01, RPC = 0x02, HOLD_OBJECT = 0x10 };

    Parcelable();
    explicit Parcelable(bool asRemote);
    ~Parcelable() override = default;

    virtual bool Marshalling(Parcel &parcel) const = 0;

    void SetBehavior(BehaviorFlag b) const
    {
        behavior_ |= static_cast<uint8_t>(b);
    }
    void ClearBehavior(BehaviorFlag b) const
    {
        behavior_ &= static_cast<uint8_t>(~b);
    }
    bool TestBehavior(BehaviorFlag b) const
    {
        return (behavior_ & static_cast<uint8_t>(b)) != 0;
    }

    bool asRemote_;
    mutable uint8_t behavior_;
};

// Memory strategy of a Parcel; the parcel owns its allocator.
class Allocator {
public:
    virtual ~Allocator() = default;
    virtual void *Realloc(void *data, size_t newSize) = 0;
    virtual void *Alloc(size_t size) = 0;
    virtual void Dealloc(void *data) = 0;
};

class DefaultAllocator : public Allocator {
public:
    void *Realloc(void *data, size_t newSize) override;
    void *Alloc(size_t size) override;
    void Dealloc(void *data) override;
};

constexpr size_t DEFAULT_CPACITY = 204800; // 200 KiB, the platform's default ceiling

// A flat byte buffer of values, each padded to 4 bytes. Reads never go past the written data:
// a failed read returns false (or a zero/empty value) and leaves the read position unchanged.
class Parcel {
public:
    Parcel();
    explicit Parcel(Allocator *allocator);
    virtual ~Parcel();
    DISALLOW_COPY_AND_MOVE(Parcel);

    size_t GetDataSize() const;
    uintptr_t GetData() const;
    size_t GetDataCapacity() const;
    size_t GetMaxCapacity() const;
    bool SetMaxCapacity(size_t maxCapacity);
    bool SetDataCapacity(size_t newCapacity);
    size_t GetWritableBytes() const;
    size_t GetReadableBytes() const;
    size_t GetReadPosition();
    size_t GetWritePosition();
    bool RewindRead(size_t newPosition);
    bool RewindWrite(size_t offsets);
    void SkipBytes(size_t bytes);
    void FlushBuffer();

    bool WriteBool(bool value);
    bool WriteInt8(int8_t value);
    bool WriteInt16(int16_t value);
    bool WriteInt32(int32_t value);
    bool WriteInt64(int64_t value);
    bool WriteUint8(uint8_t value);
    bool WriteUint16(uint16_t value);
    bool WriteUint32(uint32_t value);
    bool WriteUint64(uint64_t value);
    bool WriteFloat(float value);
    bool WriteDouble(double value);
    bool WriteBuffer(const void *data, size_t size);
    bool WriteUnpadBuffer(const void *data, size_t size);
    bool WriteBufferAddTerminator(const void *data, size_t size, size_t typeSize);
    bool WriteCString(const char *value);
    bool WriteString(const std::string &value);
    bool WriteString16(const std::u16string &value);
    bool WriteParcelable(const Parcelable *object);
    bool WriteStrongParcelable(const sptr<Parcelable> &object);
    bool WriteRemoteObject(const Parcelable *object);

    bool WriteBoolVector(const std::vector<bool> &val);
    bool WriteInt32Vector(const std::vector<int32_t> &val);
    bool WriteInt64Vector(const std::vector<int64_t> &val);
    bool WriteUInt32Vector(const std::vector<uint32_t> &val);
    bool WriteStringVector(const std::vector<std::string> &val);
    bool WriteString16Vector(const std::vector<std::u16string> &val);

    bool ReadBool();
    int8_t ReadInt8();
    int16_t ReadInt16();
    int32_t ReadInt32();
    int64_t ReadInt64();
    uint8_t ReadUint8();
    uint16_t ReadUint16();
    uint32_t ReadUint32();
    uint64_t ReadUint64();
    float ReadFloat();
    double ReadDouble();

    bool ReadBool(bool &value);
    bool ReadInt8(int8_t &value);
    bool ReadInt16(int16_t &value);
    bool ReadInt32(int32_t &value);
    bool ReadInt64(int64_t &value);
    bool ReadUint8(uint8_t &value);
    bool ReadUint16(uint16_t &value);
    bool ReadUint32(uint32_t &value);
    bool ReadUint64(uint64_t &value);
    bool ReadFloat(float &value);
    bool ReadDouble(double &value);

    const uint8_t *ReadBuffer(size_t length);
    const char *ReadCString();
    const std::string ReadString();
    bool ReadString(std::string &value);
    const std::u16string ReadString16();
    bool ReadString16(std::u16string &value);

    bool ReadBoolVector(std::vector<bool> *val);
    bool ReadInt32Vector(std::vector<int32_t> *val);
    bool ReadInt64Vector(std::vector<int64_t> *val);
    bool ReadUInt32Vector(std::vector<uint32_t> *val);
    bool ReadStringVector(std::vector<std::string> *val);
    bool ReadString16Vector(std::vector<std::u16string> *val);

    // Counterparts of WriteParcelable: a leading Int32 tells whether an object follows, then
    // T::Unmarshalling(Parcel&) reads it.
    template <typename T>
    T *ReadParcelable()
    {
        if (ReadInt32() == 0) {
            return nullptr;
        }
        return T::Unmarshalling(*this);
    }

    template <typename T>
    sptr<T> ReadStrongParcelable()
    {
        if (ReadInt32() == 0) {
            return nullptr;
        }
        return sptr<T>(T::Unmarshalling(*this));
    }

private:
    template <typename T>
    bool WriteAligned(T value);
    template <typename T>
    bool ReadAligned(T &value);
    template <typename T, typename Writer>
    bool WriteVector(const std::vector<T> &val, Writer writer);
    template <typename T, typename Reader>
    bool ReadVector(std::vector<T> *val, Reader reader, size_t minWireSize);
    bool EnsureWritable(size_t size);
    bool ReadLengthPrefixed(size_t unitSize, const uint8_t *&data, size_t &units);

    uint8_t *data_ = nullptr;
    size_t dataSize_ = 0;
    size_t readCursor_ = 0;
    size_t dataCapacity_ = 0;
    size_t maxDataCapacity_ = DEFAULT_CPACITY;
    Allocator *allocator_;
};
} // namespace OHOS

#endif // UTILS_BASE_PARCEL_H
