#include "stack_pool.h"

#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

namespace HostFfrt {
namespace {
constexpr size_t DEFAULT_STACK_KB = 256;
constexpr size_t MIN_STACK_KB = 64;
constexpr size_t MAX_STACK_KB = 8192;
// Enough for the tasks suspended at once in a busy service; a burst beyond it pays a mapping
// per task and gives the memory back when it ends.
constexpr size_t MAX_FREE_STACKS = 64;

size_t StackBytesFromEnv()
{
    const char *text = std::getenv("VORN_FFRT_STACK_KB");
    if (text == nullptr || *text == '\0') {
        return DEFAULT_STACK_KB * 1024;
    }
    char *end = nullptr;
    unsigned long value = std::strtoul(text, &end, 10);
    if (*end != '\0' || value < MIN_STACK_KB || value > MAX_STACK_KB) {
        return DEFAULT_STACK_KB * 1024;
    }
    return static_cast<size_t>(value) * 1024;
}
} // namespace

TaskStack::~TaskStack()
{
    munmap(mapping_, mappingSize_);
}

StackPool &StackPool::Instance()
{
    // Never destroyed: tasks may still finish on detached workers during static destruction.
    static StackPool *pool = new StackPool();
    return *pool;
}

StackPool::StackPool()
    : pageSize_(static_cast<size_t>(sysconf(_SC_PAGESIZE))),
      stackSize_((StackBytesFromEnv() + pageSize_ - 1) / pageSize_ * pageSize_)
{
}

std::unique_ptr<TaskStack> StackPool::Acquire()
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (!free_.empty()) {
            std::unique_ptr<TaskStack> stack = std::move(free_.back());
            free_.pop_back();
            return stack;
        }
    }
    const size_t mappingSize = stackSize_ + pageSize_;
    void *mapping = mmap(nullptr, mappingSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapping == MAP_FAILED) {
        return nullptr;
    }
    auto stack = std::make_unique<TaskStack>(mapping, mappingSize, pageSize_);
    if (mprotect(stack->Base(), stack->Size(), PROT_READ | PROT_WRITE) != 0) {
        return nullptr;
    }
    return stack;
}

void StackPool::Release(std::unique_ptr<TaskStack> stack)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (free_.size() < MAX_FREE_STACKS) {
        free_.push_back(std::move(stack));
    }
}
} // namespace HostFfrt
