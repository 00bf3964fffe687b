#include "fiber.h"

#include <cstdlib>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HOST_FFRT_ASAN 1
#endif
#if __has_feature(thread_sanitizer)
#define HOST_FFRT_TSAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) && !defined(HOST_FFRT_ASAN)
#define HOST_FFRT_ASAN 1
#endif
#if defined(__SANITIZE_THREAD__) && !defined(HOST_FFRT_TSAN)
#define HOST_FFRT_TSAN 1
#endif

#ifdef HOST_FFRT_ASAN
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#endif
#ifdef HOST_FFRT_TSAN
#include <sanitizer/tsan_interface.h>
#endif

namespace HostFfrt {
std::unique_ptr<Fiber> Fiber::Create(Entry entry, void *arg)
{
    std::unique_ptr<TaskStack> stack = StackPool::Instance().Acquire();
    if (stack == nullptr) {
        return nullptr;
    }
    return std::unique_ptr<Fiber>(new Fiber(std::move(stack), entry, arg));
}

Fiber::Fiber(std::unique_ptr<TaskStack> stack, Entry entry, void *arg)
    : stack_(std::move(stack)), entry_(entry), arg_(arg)
{
#ifdef HOST_FFRT_ASAN
    // A reused stack still carries the poisoned frames of the task that ended on it.
    ASAN_UNPOISON_MEMORY_REGION(stack_->Base(), stack_->Size());
#endif
    PrepareFiberContext(context_, stack_->Base(), stack_->Size(), &Fiber::Start, this);
#ifdef HOST_FFRT_TSAN
    sanitizer_.tsanFiber = __tsan_create_fiber(0);
#endif
}

Fiber::~Fiber()
{
#ifdef HOST_FFRT_TSAN
    __tsan_destroy_fiber(sanitizer_.tsanFiber);
#endif
    StackPool::Instance().Release(std::move(stack_));
}

void Fiber::Start(void *self)
{
    auto *fiber = static_cast<Fiber *>(self);
    fiber->EnterFromScheduler();
    fiber->entry_(fiber->arg_);
    fiber->Exit();
}

// Completes a switch onto this fiber: learns which scheduler stack it came from.
void Fiber::EnterFromScheduler()
{
#ifdef HOST_FFRT_ASAN
    __sanitizer_finish_switch_fiber(sanitizer_.asanFakeStack, &sanitizer_.schedulerStackBottom,
        &sanitizer_.schedulerStackSize);
#endif
}

void Fiber::Resume()
{
    FiberContext scheduler;
    scheduler_ = &scheduler;
#ifdef HOST_FFRT_ASAN
    void *fakeStack = nullptr;
    __sanitizer_start_switch_fiber(&fakeStack, stack_->Base(), stack_->Size());
#endif
#ifdef HOST_FFRT_TSAN
    sanitizer_.tsanScheduler = __tsan_get_current_fiber();
    __tsan_switch_to_fiber(sanitizer_.tsanFiber, 0);
#endif
    SwitchFiberContext(scheduler, context_);
#ifdef HOST_FFRT_ASAN
    __sanitizer_finish_switch_fiber(fakeStack, nullptr, nullptr);
#endif
}

void Fiber::Suspend()
{
    SwitchToScheduler(false);
    EnterFromScheduler();
}

void Fiber::Exit()
{
    SwitchToScheduler(true);
    std::abort();
}

void Fiber::SwitchToScheduler(bool exiting)
{
#ifdef HOST_FFRT_ASAN
    // A null fake-stack slot tells AddressSanitizer that this stack's frames are gone for good.
    __sanitizer_start_switch_fiber(exiting ? nullptr : &sanitizer_.asanFakeStack, sanitizer_.schedulerStackBottom,
        sanitizer_.schedulerStackSize);
#else
    (void)exiting;
#endif
#ifdef HOST_FFRT_TSAN
    __tsan_switch_to_fiber(sanitizer_.tsanScheduler, 0);
#endif
    SwitchFiberContext(context_, *scheduler_);
}
} // namespace HostFfrt
