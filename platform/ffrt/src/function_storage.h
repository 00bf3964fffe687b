#ifndef HOST_FFRT_FUNCTION_STORAGE_H
#define HOST_FFRT_FUNCTION_STORAGE_H

#include "c/type_def.h"

namespace HostFfrt {
void *AllocFunctionStorage();
// Runs the function once, destroys it and frees its storage.
void ExecuteFunction(ffrt_function_header_t *f);
// Destroys the function without running it and frees its storage.
void DropFunction(ffrt_function_header_t *f);
} // namespace HostFfrt

#endif // HOST_FFRT_FUNCTION_STORAGE_H
