#ifndef HOST_FFRT_FIBER_CONTEXT_H
#define HOST_FFRT_FIBER_CONTEXT_H

#include <cstddef>

#if !defined(__x86_64__)
#include <ucontext.h>
#endif

namespace HostFfrt {
// Where a switched-out execution context goes on. On x86-64 a switch saves and restores only
// what the calling convention asks a callee to keep, as the device's runtime does: swapcontext
// also saves the signal mask with a system call, twice per task switch. Elsewhere the host falls
// back to swapcontext.
struct FiberContext {
    using Entry = void (*)(void *);
#if defined(__x86_64__)
    void *stackPointer = nullptr;
#else
    ucontext_t context {};
    Entry entry = nullptr;
    void *arg = nullptr;
#endif
};

// Makes the first switch to `context` call `entry(arg)` on the given stack; `entry` must never
// return, only switch away for good.
void PrepareFiberContext(FiberContext &context, void *stackBase, size_t stackSize, FiberContext::Entry entry,
    void *arg);
// Saves the running context in `from` and goes on with `to`; returns once something switches
// back to `from`.
void SwitchFiberContext(FiberContext &from, FiberContext &to);
} // namespace HostFfrt

#endif // HOST_FFRT_FIBER_CONTEXT_H
