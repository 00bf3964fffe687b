#ifndef HOST_FFRT_TASK_QUEUE_H
#define HOST_FFRT_TASK_QUEUE_H

#include <cstddef>
#include <deque>
#include <string>
#include <utility>

#include "c/type_def.h"

namespace HostFfrt {
struct RuntimeTask;

// A queue runs at most `maxConcurrency` of its tasks at a time (one for a serial queue), in the
// order they became due. Guarded by the runtime's lock.
struct TaskQueue {
    TaskQueue(std::string queueName, ffrt_qos_t queueQos, int concurrency)
        : name(std::move(queueName)), qos(queueQos), maxConcurrency(concurrency) {}

    std::string name;
    ffrt_qos_t qos;
    int maxConcurrency;
    std::deque<RuntimeTask *> waiting; // due tasks without a slot yet
    size_t delayed = 0;                // tasks still held by the timer
    int active = 0;                    // tasks holding a slot: dispatched to the pool or running
    bool orphaned = false;             // destroyed from one of its own tasks: freed once none is active
};
} // namespace HostFfrt

#endif // HOST_FFRT_TASK_QUEUE_H
