#include "fiber_context.h"

#include <cstdint>
#include <cstdlib>

#if defined(__x86_64__)
extern "C" {
// Pushes the callee-saved registers and the floating-point control words on the running stack,
// saves its pointer, then pops the same from the next stack and returns on it.
__attribute__((visibility("hidden"))) void HostFfrtSwitchContext(void **savedStackPointer, void *nextStackPointer);
// Where a new context's first switch returns to: calls the entry (r12) with its argument (r13).
// Unwinding stops here, as at the bottom of a thread.
__attribute__((visibility("hidden"))) void HostFfrtContextStart();
}

asm(R"(
    .pushsection .text
    .p2align 4
    .globl HostFfrtSwitchContext
    .hidden HostFfrtSwitchContext
    .type HostFfrtSwitchContext, @function
HostFfrtSwitchContext:
    pushq %rbp
    pushq %rbx
    pushq %r12
    pushq %r13
    pushq %r14
    pushq %r15
    subq $8, %rsp
    stmxcsr (%rsp)
    fnstcw 4(%rsp)
    movq %rsp, (%rdi)
    movq %rsi, %rsp
    ldmxcsr (%rsp)
    fldcw 4(%rsp)
    addq $8, %rsp
    popq %r15
    popq %r14
    popq %r13
    popq %r12
    popq %rbx
    popq %rbp
    ret
    .size HostFfrtSwitchContext, .-HostFfrtSwitchContext

    .p2align 4
    .globl HostFfrtContextStart
    .hidden HostFfrtContextStart
    .type HostFfrtContextStart, @function
HostFfrtContextStart:
    .cfi_startproc
    .cfi_undefined rip
    movq %r13, %rdi
    callq *%r12
    ud2
    .cfi_endproc
    .size HostFfrtContextStart, .-HostFfrtContextStart
    .popsection
)");

namespace HostFfrt {
namespace {
constexpr uintptr_t STACK_ALIGNMENT = 16;
constexpr uint32_t DEFAULT_MXCSR = 0x1F80; // all exceptions masked, round to nearest
constexpr uint16_t DEFAULT_FPU_CONTROL = 0x037F; // the same for the x87 unit

// What HostFfrtSwitchContext pops, from the lowest address up.
struct InitialFrame {
    uint32_t mxcsr;
    uint16_t fpuControl;
    uint16_t padding;
    void *r15;
    void *r14;
    void *r13;
    void *r12;
    void *rbx;
    void *rbp;
    void *returnAddress;
};
static_assert(sizeof(InitialFrame) % STACK_ALIGNMENT == 0, "the start routine must run on an aligned stack");
} // namespace

void PrepareFiberContext(FiberContext &context, void *stackBase, size_t stackSize, FiberContext::Entry entry, void *arg)
{
    // Below the top, so that the frame's end is aligned as a call expects it.
    const uintptr_t top = (reinterpret_cast<uintptr_t>(stackBase) + stackSize) & ~(STACK_ALIGNMENT - 1);
    auto *frame = reinterpret_cast<InitialFrame *>(top - sizeof(InitialFrame) - STACK_ALIGNMENT);
    *frame = InitialFrame {DEFAULT_MXCSR, DEFAULT_FPU_CONTROL, 0, nullptr, nullptr, arg,
        reinterpret_cast<void *>(entry), nullptr, nullptr, reinterpret_cast<void *>(&HostFfrtContextStart)};
    context.stackPointer = frame;
}

void SwitchFiberContext(FiberContext &from, FiberContext &to)
{
    HostFfrtSwitchContext(&from.stackPointer, to.stackPointer);
}
} // namespace HostFfrt

#else

namespace HostFfrt {
namespace {
constexpr unsigned int HALF_BITS = 32;

// makecontext passes only ints; the context's address travels in two halves.
void StartContext(unsigned int high, unsigned int low)
{
    auto *context = reinterpret_cast<FiberContext *>((static_cast<uintptr_t>(high) << HALF_BITS) | low);
    context->entry(context->arg);
    std::abort();
}
} // namespace

void PrepareFiberContext(FiberContext &context, void *stackBase, size_t stackSize, FiberContext::Entry entry, void *arg)
{
    context.entry = entry;
    context.arg = arg;
    getcontext(&context.context);
    context.context.uc_stack.ss_sp = stackBase;
    context.context.uc_stack.ss_size = stackSize;
    context.context.uc_link = nullptr;
    const auto self = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(&context));
    makecontext(&context.context, reinterpret_cast<void (*)()>(&StartContext), 2,
        static_cast<unsigned int>(self >> HALF_BITS), static_cast<unsigned int>(self));
}

void SwitchFiberContext(FiberContext &from, FiberContext &to)
{
    if (swapcontext(&from.context, &to.context) != 0) {
        std::abort();
    }
}
} // namespace HostFfrt

#endif
