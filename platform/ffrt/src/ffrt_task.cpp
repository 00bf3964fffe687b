#include "attr_storage.h"
#include "c/task.h"
#include "function_storage.h"
#include "runtime.h"

using HostFfrt::Runtime;
using HostFfrt::RuntimeTask;
using HostFfrt::TaskAttrData;

int ffrt_task_attr_init(ffrt_task_attr_t *attr)
{
    return HostFfrt::StoreAttr(attr, TaskAttrData {});
}

void ffrt_task_attr_destroy(ffrt_task_attr_t *attr)
{
    // Nothing is owned outside the storage.
    ffrt_task_attr_init(attr);
}

void ffrt_task_attr_set_name(ffrt_task_attr_t *, const char *) {}

void ffrt_task_attr_set_delay(ffrt_task_attr_t *attr, uint64_t delay_us)
{
    if (attr != nullptr) {
        HostFfrt::StoreAttr(attr, TaskAttrData {delay_us});
    }
}

void *ffrt_alloc_auto_managed_function_storage_base(ffrt_function_kind_t)
{
    return HostFfrt::AllocFunctionStorage();
}

void ffrt_submit_base(ffrt_function_header_t *f, const ffrt_deps_t *, const ffrt_deps_t *, const ffrt_task_attr_t *attr)
{
    RuntimeTask *task = Runtime::Instance().Submit(f, attr, nullptr);
    if (task != nullptr) {
        RuntimeTask::Release(task);
    }
}

void ffrt_task_handle_destroy(ffrt_task_handle_t handle)
{
    if (handle != nullptr) {
        RuntimeTask::Release(static_cast<RuntimeTask *>(handle));
    }
}
