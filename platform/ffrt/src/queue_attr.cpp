#include "attr_storage.h"
#include "c/queue.h"

namespace HostFfrt {
QueueAttrData DefaultQueueAttr()
{
    QueueAttrData data {};
    data.qos = ffrt_qos_default;
    data.maxConcurrency = 1;
    return data;
}
} // namespace HostFfrt

using HostFfrt::LoadQueueAttr;
using HostFfrt::QueueAttrData;
using HostFfrt::UpdateAttr;

int ffrt_queue_attr_init(ffrt_queue_attr_t *attr)
{
    if (attr == nullptr) {
        return ffrt_error;
    }
    HostFfrt::StoreAttr(*attr, HostFfrt::DefaultQueueAttr());
    return ffrt_success;
}

void ffrt_queue_attr_destroy(ffrt_queue_attr_t *attr)
{
    // The timeout callback belongs to whoever set it; the attribute only refers to it.
    ffrt_queue_attr_init(attr);
}

void ffrt_queue_attr_set_qos(ffrt_queue_attr_t *attr, ffrt_qos_t qos)
{
    UpdateAttr<QueueAttrData>(attr, [qos](QueueAttrData &data) { data.qos = qos; });
}

ffrt_qos_t ffrt_queue_attr_get_qos(const ffrt_queue_attr_t *attr)
{
    return LoadQueueAttr(attr).qos;
}

void ffrt_queue_attr_set_timeout(ffrt_queue_attr_t *attr, uint64_t timeout_us)
{
    UpdateAttr<QueueAttrData>(attr, [timeout_us](QueueAttrData &data) { data.timeoutUs = timeout_us; });
}

uint64_t ffrt_queue_attr_get_timeout(const ffrt_queue_attr_t *attr)
{
    return LoadQueueAttr(attr).timeoutUs;
}

void ffrt_queue_attr_set_callback(ffrt_queue_attr_t *attr, ffrt_function_header_t *f)
{
    UpdateAttr<QueueAttrData>(attr, [f](QueueAttrData &data) { data.timeoutCallback = f; });
}

ffrt_function_header_t *ffrt_queue_attr_get_callback(const ffrt_queue_attr_t *attr)
{
    return LoadQueueAttr(attr).timeoutCallback;
}

void ffrt_queue_attr_set_max_concurrency(ffrt_queue_attr_t *attr, const int max_concurrency)
{
    UpdateAttr<QueueAttrData>(attr, [max_concurrency](QueueAttrData &data) { data.maxConcurrency = max_concurrency; });
}

int ffrt_queue_attr_get_max_concurrency(const ffrt_queue_attr_t *attr)
{
    return LoadQueueAttr(attr).maxConcurrency;
}
