#include "function_storage.h"

#include <new>

namespace HostFfrt {
namespace {
struct PlainFunction {
    ffrt_function_header_t header;
    ffrt_function_t func;
    void *arg;
};
static_assert(sizeof(PlainFunction) <= ffrt_auto_managed_function_storage_size);

void ExecPlainFunction(void *storage)
{
    auto *plain = static_cast<PlainFunction *>(storage);
    plain->func(plain->arg);
}

void DestroyPlainFunction(void *)
{
}
} // namespace

void *AllocFunctionStorage()
{
    // operator new aligns for any fundamental type, which is what callables placed there need.
    return ::operator new(ffrt_auto_managed_function_storage_size, std::nothrow);
}

void ExecuteFunction(ffrt_function_header_t *f)
{
    f->exec(f);
    DropFunction(f);
}

void DropFunction(ffrt_function_header_t *f)
{
    if (f == nullptr) {
        return;
    }
    f->destroy(f);
    ::operator delete(f);
}

ffrt_function_header_t *WrapPlainFunction(ffrt_function_t func, void *arg)
{
    void *storage = AllocFunctionStorage();
    if (storage == nullptr) {
        return nullptr;
    }
    auto *plain = new (storage) PlainFunction {{ExecPlainFunction, DestroyPlainFunction, {0, 0}}, func, arg};
    return &plain->header;
}
} // namespace HostFfrt
