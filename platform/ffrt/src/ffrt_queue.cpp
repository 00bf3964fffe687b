#include "attr_storage.h"
#include "c/queue.h"
#include "function_storage.h"
#include "runtime.h"

using HostFfrt::QueueAttrData;
using HostFfrt::Runtime;
using HostFfrt::TaskQueue;

int ffrt_queue_attr_init(ffrt_queue_attr_t *attr)
{
    return HostFfrt::StoreAttr(attr, QueueAttrData {});
}

void ffrt_queue_attr_destroy(ffrt_queue_attr_t *attr)
{
    ffrt_queue_attr_init(attr);
}

void ffrt_queue_attr_set_qos(ffrt_queue_attr_t *attr, ffrt_qos_t qos)
{
    if (attr != nullptr) {
        HostFfrt::StoreAttr(attr, QueueAttrData {qos});
    }
}

ffrt_queue_t ffrt_queue_create(ffrt_queue_type_t type, const char *name, const ffrt_queue_attr_t *attr)
{
    if (type != ffrt_queue_serial) {
        return nullptr;
    }
    const QueueAttrData data = HostFfrt::LoadAttr<QueueAttrData>(attr);
    return Runtime::Instance().CreateQueue(name == nullptr ? "" : name, data.qos);
}

void ffrt_queue_destroy(ffrt_queue_t queue)
{
    if (queue != nullptr) {
        Runtime::Instance().DestroyQueue(static_cast<TaskQueue *>(queue));
    }
}

ffrt_task_handle_t ffrt_queue_submit_h(ffrt_queue_t queue, ffrt_function_header_t *f, const ffrt_task_attr_t *attr)
{
    Runtime &runtime = Runtime::Instance();
    if (queue == nullptr || runtime.QueueSubmitBroken()) {
        // A refused task is released at once, as the caller no longer owns it.
        HostFfrt::DropFunction(f);
        return nullptr;
    }
    return runtime.Submit(f, attr, static_cast<TaskQueue *>(queue));
}
