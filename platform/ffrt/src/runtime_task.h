#ifndef HOST_FFRT_RUNTIME_TASK_H
#define HOST_FFRT_RUNTIME_TASK_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "c/type_def.h"
#include "fiber.h"

namespace HostFfrt {
struct TaskQueue;

enum class TaskState {
    DELAYED, // held by the timer until due
    QUEUED, // due, waiting in its queue for a free slot
    DISPATCHED, // due, waiting for a pool worker
    DROPPING, // taken out of its destroyed queue; its function is being destroyed
    RUNNING, // started: on a worker, suspended in a runtime wait, or ready to resume
    FINISHED,
    CANCELLED,
};

// Why a task's fiber switched back to its worker.
enum class SwitchReason {
    PARK, // waits until Runtime::Resume
    YIELD, // ready again at once, behind the tasks already waiting to resume
    EXIT, // its function returned
};

// What the C++ runtime keeps per thread about exceptions being handled. A task suspended inside
// a catch block takes it along to whichever thread resumes it.
struct ExceptionState {
    void *caught = nullptr;
    unsigned int uncaught = 0;
};

// One submitted task; it doubles as the task handle. The runtime holds one reference until the
// task settles, every handle given out holds another. State fields are guarded by the
// runtime's lock; `function` is touched only by the thread that runs or drops the task.
struct RuntimeTask {
    using Clock = std::chrono::steady_clock;

    RuntimeTask(ffrt_function_header_t *f, ffrt_qos_t taskQos, TaskQueue *owner, uint32_t references)
        : function(f), qos(taskQos), queue(owner), refs(references)
    {
    }

    // Drops one reference; returns the count before.
    static uint32_t Release(RuntimeTask *task)
    {
        uint32_t before = task->refs.fetch_sub(1, std::memory_order_acq_rel);
        if (before == 1) {
            delete task;
        }
        return before;
    }

    ffrt_function_header_t *function;
    ffrt_qos_t qos;
    TaskQueue *queue; // null for pool tasks; valid until the task settles
    std::atomic<uint32_t> refs;
    uint64_t id = 0;
    Clock::time_point due {};
    size_t slotGroup = 0; // the worker group whose running slot the task holds while it runs
    TaskState state = TaskState::DELAYED;
    // Once started: the fiber it runs on (null when no stack could be had: it then runs on the
    // worker's own stack and its runtime waits block the thread).
    std::unique_ptr<Fiber> fiber;
    SwitchReason reason = SwitchReason::EXIT;
    bool parked = false; // switched out in a wait, not yet resumed
    bool wakePending = false; // resumed while still switching out
    // The thread-local state the task's code sees, carried across threads while it is away.
    int savedErrno = 0;
    ExceptionState exceptions;
};
} // namespace HostFfrt

#endif // HOST_FFRT_RUNTIME_TASK_H
