#include <algorithm>
#include <cstring>

#include "attr_storage.h"
#include "c/task.h"

namespace HostFfrt {
TaskAttrData DefaultTaskAttr()
{
    TaskAttrData data {};
    data.qos = ffrt_qos_default;
    data.priority = ffrt_queue_priority_low;
    return data;
}
} // namespace HostFfrt

using HostFfrt::LoadTaskAttr;
using HostFfrt::TaskAttrData;
using HostFfrt::UpdateAttr;

int ffrt_task_attr_init(ffrt_task_attr_t *attr)
{
    if (attr == nullptr) {
        return ffrt_error;
    }
    HostFfrt::StoreAttr(*attr, HostFfrt::DefaultTaskAttr());
    return ffrt_success;
}

void ffrt_task_attr_destroy(ffrt_task_attr_t *attr)
{
    // Nothing is owned outside the storage; clear it so that a stale name is not read back.
    ffrt_task_attr_init(attr);
}

void ffrt_task_attr_set_name(ffrt_task_attr_t *attr, const char *name)
{
    UpdateAttr<TaskAttrData>(attr, [name](TaskAttrData &data) {
        size_t length = name == nullptr ? 0 : std::min(std::strlen(name), HostFfrt::TASK_NAME_CAPACITY - 1);
        std::memset(data.name, 0, sizeof(data.name));
        if (length > 0) {
            std::memcpy(data.name, name, length);
        }
    });
}

const char *ffrt_task_attr_get_name(const ffrt_task_attr_t *attr)
{
    static_assert(offsetof(TaskAttrData, name) == 0);
    return attr == nullptr ? nullptr : reinterpret_cast<const char *>(attr->storage);
}

void ffrt_task_attr_set_qos(ffrt_task_attr_t *attr, ffrt_qos_t qos)
{
    UpdateAttr<TaskAttrData>(attr, [qos](TaskAttrData &data) { data.qos = qos; });
}

ffrt_qos_t ffrt_task_attr_get_qos(const ffrt_task_attr_t *attr)
{
    return LoadTaskAttr(attr).qos;
}

void ffrt_task_attr_set_delay(ffrt_task_attr_t *attr, uint64_t delay_us)
{
    UpdateAttr<TaskAttrData>(attr, [delay_us](TaskAttrData &data) { data.delayUs = delay_us; });
}

uint64_t ffrt_task_attr_get_delay(const ffrt_task_attr_t *attr)
{
    return LoadTaskAttr(attr).delayUs;
}

void ffrt_task_attr_set_queue_priority(ffrt_task_attr_t *attr, ffrt_queue_priority_t priority)
{
    UpdateAttr<TaskAttrData>(attr, [priority](TaskAttrData &data) { data.priority = priority; });
}

ffrt_queue_priority_t ffrt_task_attr_get_queue_priority(const ffrt_task_attr_t *attr)
{
    return static_cast<ffrt_queue_priority_t>(LoadTaskAttr(attr).priority);
}

void ffrt_task_attr_set_stack_size(ffrt_task_attr_t *attr, uint64_t size)
{
    UpdateAttr<TaskAttrData>(attr, [size](TaskAttrData &data) { data.stackSize = size; });
}

uint64_t ffrt_task_attr_get_stack_size(const ffrt_task_attr_t *attr)
{
    return LoadTaskAttr(attr).stackSize;
}

void ffrt_task_attr_set_timeout(ffrt_task_attr_t *attr, uint64_t timeout_us)
{
    UpdateAttr<TaskAttrData>(attr, [timeout_us](TaskAttrData &data) { data.timeoutUs = timeout_us; });
}

uint64_t ffrt_task_attr_get_timeout(const ffrt_task_attr_t *attr)
{
    return LoadTaskAttr(attr).timeoutUs;
}
