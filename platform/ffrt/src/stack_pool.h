#ifndef HOST_FFRT_STACK_POOL_H
#define HOST_FFRT_STACK_POOL_H

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace HostFfrt {
// One task stack: mapped memory with an inaccessible guard page below it, so that an overflow
// faults instead of writing over a neighbour.
class TaskStack {
public:
    TaskStack(void *mapping, size_t mappingSize, size_t guardSize)
        : mapping_(mapping), mappingSize_(mappingSize), guardSize_(guardSize)
    {
    }
    ~TaskStack();
    TaskStack(const TaskStack &) = delete;
    TaskStack &operator=(const TaskStack &) = delete;

    void *Base() const { return static_cast<char *>(mapping_) + guardSize_; }
    size_t Size() const { return mappingSize_ - guardSize_; }

private:
    void *mapping_;
    size_t mappingSize_;
    size_t guardSize_;
};

// Hands out task stacks and keeps returned ones for reuse, up to a cap beyond which they are
// unmapped. The stack size is VORN_FFRT_STACK_KB (default 256 KiB), read once.
class StackPool {
public:
    static StackPool &Instance();

    // Null when the system refuses the mapping.
    std::unique_ptr<TaskStack> Acquire();
    void Release(std::unique_ptr<TaskStack> stack);
    size_t StackSize() const { return stackSize_; }

private:
    StackPool();

    const size_t pageSize_;
    const size_t stackSize_;
    std::mutex mutex_;
    std::vector<std::unique_ptr<TaskStack>> free_;
};
} // namespace HostFfrt

#endif // HOST_FFRT_STACK_POOL_H
