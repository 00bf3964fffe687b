#ifndef HOST_FFRT_ATTR_STORAGE_H
#define HOST_FFRT_ATTR_STORAGE_H

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "c/queue.h"
#include "c/task.h"

namespace HostFfrt {
// The attribute structs only promise 4-byte alignment, so their contents are copied in and out
// with memcpy instead of being accessed in place.
constexpr size_t TASK_NAME_CAPACITY = 96;

struct TaskAttrData {
    char name[TASK_NAME_CAPACITY]; // first, so that ffrt_task_attr_get_name can point into the storage
    uint64_t delayUs;
    uint64_t timeoutUs;
    uint64_t stackSize;
    int32_t qos;
    int32_t priority;
};

struct QueueAttrData {
    ffrt_function_header_t *timeoutCallback;
    uint64_t timeoutUs;
    int32_t qos;
    int32_t maxConcurrency;
};

template <typename Data, typename Attr>
Data LoadAttr(const Attr &attr)
{
    static_assert(std::is_trivially_copyable_v<Data> && sizeof(Data) <= sizeof(attr.storage));
    Data data;
    std::memcpy(&data, attr.storage, sizeof(data));
    return data;
}

template <typename Data, typename Attr>
void StoreAttr(Attr &attr, const Data &data)
{
    static_assert(std::is_trivially_copyable_v<Data> && sizeof(Data) <= sizeof(attr.storage));
    std::memcpy(attr.storage, &data, sizeof(data));
}

// Applies `change` to the data held by `attr`; a null attribute is ignored.
template <typename Data, typename Attr, typename Change>
void UpdateAttr(Attr *attr, Change change)
{
    if (attr == nullptr) {
        return;
    }
    Data data = LoadAttr<Data>(*attr);
    change(data);
    StoreAttr(*attr, data);
}

TaskAttrData DefaultTaskAttr();
QueueAttrData DefaultQueueAttr();

inline TaskAttrData LoadTaskAttr(const ffrt_task_attr_t *attr)
{
    return attr == nullptr ? DefaultTaskAttr() : LoadAttr<TaskAttrData>(*attr);
}

inline QueueAttrData LoadQueueAttr(const ffrt_queue_attr_t *attr)
{
    return attr == nullptr ? DefaultQueueAttr() : LoadAttr<QueueAttrData>(*attr);
}
} // namespace HostFfrt

#endif // HOST_FFRT_ATTR_STORAGE_H
