#include "function_storage.h"

#include <new>

namespace HostFfrt {
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
} // namespace HostFfrt
