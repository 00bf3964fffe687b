#ifndef HOST_FFRT_FIBER_H
#define HOST_FFRT_FIBER_H

#include <cstddef>
#include <memory>

#include "fiber_context.h"
#include "stack_pool.h"

namespace HostFfrt {
// An execution context on its own stack. A worker thread's scheduler Resume()s it; the code on
// it runs until it Suspend()s or Exit()s, which returns to the Resume() call that switched to
// it. Successive resumes may come from different threads. The sanitizers are told about every
// switch, so that AddressSanitizer knows which stack is live and ThreadSanitizer keeps one
// history per fiber.
class Fiber {
public:
    using Entry = void (*)(void *);

    // Null when no stack can be had.
    static std::unique_ptr<Fiber> Create(Entry entry, void *arg);
    ~Fiber();
    Fiber(const Fiber &) = delete;
    Fiber &operator=(const Fiber &) = delete;

    // Called by a scheduler: runs the fiber until it suspends or exits.
    void Resume();
    // Called on the fiber: returns to the scheduler that resumed it, until resumed again.
    void Suspend();
    // Called on the fiber as its last act; a fiber that exited must not be resumed.
    [[noreturn]] void Exit();

private:
    Fiber(std::unique_ptr<TaskStack> stack, Entry entry, void *arg);
    static void Start(void *fiber);
    void EnterFromScheduler();
    void SwitchToScheduler(bool exiting);

    std::unique_ptr<TaskStack> stack_;
    Entry entry_;
    void *arg_;
    FiberContext context_ {};
    FiberContext *scheduler_ = nullptr; // the context of the scheduler that resumed the fiber last
    // What the sanitizers need told about each switch; unused in plain builds, hence a plain
    // struct rather than private members a compiler would flag there.
    struct SanitizerState {
        void *tsanFiber = nullptr;
        void *tsanScheduler = nullptr;
        void *asanFakeStack = nullptr;
        const void *schedulerStackBottom = nullptr;
        size_t schedulerStackSize = 0;
    };
    SanitizerState sanitizer_;
};
} // namespace HostFfrt

#endif // HOST_FFRT_FIBER_H
