#include <algorithm>

#include "attr_storage.h"
#include "c/queue.h"
#include "function_storage.h"
#include "runtime.h"

using HostFfrt::Runtime;
using HostFfrt::RuntimeTask;
using HostFfrt::TaskQueue;

namespace {
ffrt_task_handle_t SubmitToQueue(ffrt_queue_t queue, ffrt_function_header_t *f, const ffrt_task_attr_t *attr,
    bool atHead)
{
    Runtime &runtime = Runtime::Instance();
    if (queue == nullptr || runtime.QueueSubmitBroken()) {
        // A refused task is released at once, as the caller no longer owns it.
        HostFfrt::DropFunction(f);
        return nullptr;
    }
    return runtime.Submit(f, attr, static_cast<TaskQueue *>(queue), atHead);
}

void ReleaseHandle(ffrt_task_handle_t handle)
{
    if (handle != nullptr) {
        RuntimeTask::Release(static_cast<RuntimeTask *>(handle));
    }
}
} // namespace

ffrt_queue_t ffrt_queue_create(ffrt_queue_type_t type, const char *name, const ffrt_queue_attr_t *attr)
{
    if (type != ffrt_queue_serial && type != ffrt_queue_concurrent) {
        return nullptr;
    }
    HostFfrt::QueueAttrData data = HostFfrt::LoadQueueAttr(attr);
    int concurrency = type == ffrt_queue_serial ? 1 : std::max(1, data.maxConcurrency);
    return Runtime::Instance().CreateQueue(name == nullptr ? "" : name, data.qos, concurrency);
}

void ffrt_queue_destroy(ffrt_queue_t queue)
{
    if (queue != nullptr) {
        Runtime::Instance().DestroyQueue(static_cast<TaskQueue *>(queue));
    }
}

void ffrt_queue_submit(ffrt_queue_t queue, ffrt_function_header_t *f, const ffrt_task_attr_t *attr)
{
    ReleaseHandle(SubmitToQueue(queue, f, attr, false));
}

ffrt_task_handle_t ffrt_queue_submit_h(ffrt_queue_t queue, ffrt_function_header_t *f, const ffrt_task_attr_t *attr)
{
    return SubmitToQueue(queue, f, attr, false);
}

void ffrt_queue_submit_f(ffrt_queue_t queue, ffrt_function_t func, void *arg, const ffrt_task_attr_t *attr)
{
    ffrt_queue_submit(queue, HostFfrt::WrapPlainFunction(func, arg), attr);
}

ffrt_task_handle_t ffrt_queue_submit_h_f(ffrt_queue_t queue, ffrt_function_t func, void *arg,
    const ffrt_task_attr_t *attr)
{
    return ffrt_queue_submit_h(queue, HostFfrt::WrapPlainFunction(func, arg), attr);
}

void ffrt_queue_submit_head(ffrt_queue_t queue, ffrt_function_header_t *f, const ffrt_task_attr_t *attr)
{
    ReleaseHandle(SubmitToQueue(queue, f, attr, true));
}

ffrt_task_handle_t ffrt_queue_submit_head_h(ffrt_queue_t queue, ffrt_function_header_t *f,
    const ffrt_task_attr_t *attr)
{
    return SubmitToQueue(queue, f, attr, true);
}

void ffrt_queue_wait(ffrt_task_handle_t handle)
{
    if (handle != nullptr) {
        Runtime::Instance().Wait(static_cast<RuntimeTask *>(handle));
    }
}

int ffrt_queue_cancel(ffrt_task_handle_t handle)
{
    if (handle == nullptr) {
        return ffrt_error;
    }
    return Runtime::Instance().Cancel(static_cast<RuntimeTask *>(handle));
}

uint64_t ffrt_queue_get_task_cnt(ffrt_queue_t queue)
{
    return queue == nullptr ? 0 : Runtime::Instance().WaitingTaskCount(static_cast<TaskQueue *>(queue));
}
