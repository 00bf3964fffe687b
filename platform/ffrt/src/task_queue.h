#ifndef HOST_FFRT_TASK_QUEUE_H
#define HOST_FFRT_TASK_QUEUE_H

#include <cstddef>
#include <deque>
#include <string>
#include <utility>

#include "c/type_def.h"

namespace HostFfrt {
struct RuntimeTask;

// A serial queue: one of its tasks runs at a time, in the order they became due; all of them at
// the queue's QoS. Guarded by the runtime's lock.
struct TaskQueue {
    TaskQueue(std::string queueName, ffrt_qos_t queueQos) : name(std::move(queueName)), qos(queueQos) {}

    std::string name;
    ffrt_qos_t qos;
    std::deque<RuntimeTask *> waiting; // due tasks without a slot yet
    int active = 0; // tasks holding the slot: dispatched to the pool or running
    bool orphaned = false; // destroyed from one of its own tasks: freed once none is active
};
} // namespace HostFfrt

#endif // HOST_FFRT_TASK_QUEUE_H
