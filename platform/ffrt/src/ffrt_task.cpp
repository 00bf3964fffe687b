#include "c/task.h"
#include "function_storage.h"
#include "runtime.h"

using HostFfrt::Runtime;
using HostFfrt::RuntimeTask;

namespace {
RuntimeTask *ToTask(ffrt_task_handle_t handle)
{
    return static_cast<RuntimeTask *>(handle);
}
} // namespace

void *ffrt_alloc_auto_managed_function_storage_base(ffrt_function_kind_t)
{
    return HostFfrt::AllocFunctionStorage();
}

void ffrt_submit_base(ffrt_function_header_t *f, const ffrt_deps_t *, const ffrt_deps_t *,
    const ffrt_task_attr_t *attr)
{
    RuntimeTask *task = Runtime::Instance().Submit(f, attr, nullptr, false);
    if (task != nullptr) {
        RuntimeTask::Release(task);
    }
}

ffrt_task_handle_t ffrt_submit_h_base(ffrt_function_header_t *f, const ffrt_deps_t *, const ffrt_deps_t *,
    const ffrt_task_attr_t *attr)
{
    return Runtime::Instance().Submit(f, attr, nullptr, false);
}

void ffrt_submit_f(ffrt_function_t func, void *arg, const ffrt_deps_t *in_deps, const ffrt_deps_t *out_deps,
    const ffrt_task_attr_t *attr)
{
    ffrt_submit_base(HostFfrt::WrapPlainFunction(func, arg), in_deps, out_deps, attr);
}

ffrt_task_handle_t ffrt_submit_h_f(ffrt_function_t func, void *arg, const ffrt_deps_t *in_deps,
    const ffrt_deps_t *out_deps, const ffrt_task_attr_t *attr)
{
    return ffrt_submit_h_base(HostFfrt::WrapPlainFunction(func, arg), in_deps, out_deps, attr);
}

uint32_t ffrt_task_handle_inc_ref(ffrt_task_handle_t handle)
{
    if (handle == nullptr) {
        return 0;
    }
    return ToTask(handle)->refs.fetch_add(1, std::memory_order_relaxed);
}

uint32_t ffrt_task_handle_dec_ref(ffrt_task_handle_t handle)
{
    if (handle == nullptr) {
        return 0;
    }
    return RuntimeTask::Release(ToTask(handle));
}

void ffrt_task_handle_destroy(ffrt_task_handle_t handle)
{
    ffrt_task_handle_dec_ref(handle);
}

uint64_t ffrt_task_handle_get_id(ffrt_task_handle_t handle)
{
    return handle == nullptr ? 0 : ToTask(handle)->id;
}

void ffrt_wait_deps(const ffrt_deps_t *deps)
{
    if (deps == nullptr) {
        return;
    }
    for (uint32_t i = 0; i < deps->len; ++i) {
        const ffrt_dependence_t &dep = deps->items[i];
        if (dep.type == ffrt_dependence_task && dep.ptr != nullptr) {
            Runtime::Instance().Wait(static_cast<RuntimeTask *>(const_cast<void *>(dep.ptr)));
        }
    }
}

void ffrt_wait(void)
{
    Runtime::Instance().WaitForSubmittedTasks();
}

int ffrt_this_task_update_qos(ffrt_qos_t qos)
{
    RuntimeTask *task = Runtime::CurrentTask();
    if (task == nullptr) {
        return ffrt_error;
    }
    task->qos = qos;
    return ffrt_success;
}

ffrt_qos_t ffrt_this_task_get_qos(void)
{
    RuntimeTask *task = Runtime::CurrentTask();
    return task == nullptr ? ffrt_qos_default : task->qos;
}

uint64_t ffrt_this_task_get_id(void)
{
    RuntimeTask *task = Runtime::CurrentTask();
    return task == nullptr ? 0 : task->id;
}
