#ifndef HOST_FFRT_SYNC_OBJECTS_H
#define HOST_FFRT_SYNC_OBJECTS_H

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>

namespace HostFfrt {
// The storage of ffrt_mutex_t and ffrt_cond_t promises only 4-byte alignment, too little for the
// std:: objects underneath; the storage therefore holds a pointer to them.
template <typename Object, typename Storage>
Object *LoadObject(const Storage *storage)
{
    static_assert(sizeof(Object *) <= sizeof(storage->storage));
    Object *object = nullptr;
    std::memcpy(&object, storage->storage, sizeof(object));
    return object;
}

template <typename Object, typename Storage>
void StoreObject(Storage *storage, Object *object)
{
    std::memcpy(storage->storage, &object, sizeof(object));
}

// A recursive mutex is owned by the thread that runs the locking task: on the host a task never
// changes threads.
struct MutexObject {
    explicit MutexObject(bool isRecursive) : recursive(isRecursive) {}

    std::mutex mutex;
    const bool recursive;
    std::atomic<std::thread::id> owner {};
    size_t depth = 0; // touched only by the owner
};

struct CondObject {
    std::condition_variable cond;
};
} // namespace HostFfrt

#endif // HOST_FFRT_SYNC_OBJECTS_H
