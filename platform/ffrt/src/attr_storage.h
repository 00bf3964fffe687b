#ifndef HOST_FFRT_ATTR_STORAGE_H
#define HOST_FFRT_ATTR_STORAGE_H

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "c/queue.h"
#include "c/task.h"

namespace HostFfrt {
// What the host keeps of the attributes; a default-constructed one is what init sets.
struct TaskAttrData {
    uint64_t delayUs = 0;
};

struct QueueAttrData {
    int32_t qos = ffrt_qos_default;
};

// The attribute structs only promise 4-byte alignment, so their contents are copied in and out
// with memcpy instead of being accessed in place. A null attribute reads as the defaults.
template <typename Data, typename Attr> Data LoadAttr(const Attr *attr)
{
    static_assert(std::is_trivially_copyable_v<Data> && sizeof(Data) <= sizeof(attr->storage));
    Data data;
    if (attr != nullptr) {
        std::memcpy(&data, attr->storage, sizeof(data));
    }
    return data;
}

template <typename Data, typename Attr> int StoreAttr(Attr *attr, const Data &data)
{
    static_assert(std::is_trivially_copyable_v<Data> && sizeof(Data) <= sizeof(attr->storage));
    if (attr == nullptr) {
        return ffrt_error;
    }
    std::memcpy(attr->storage, &data, sizeof(data));
    return ffrt_success;
}
} // namespace HostFfrt

#endif // HOST_FFRT_ATTR_STORAGE_H
