#ifndef HOST_FFRT_SYNC_OBJECTS_H
#define HOST_FFRT_SYNC_OBJECTS_H

#include <cstring>
#include <deque>
#include <mutex>
#include <new>

#include "c/type_def.h"
#include "waiter.h"

namespace HostFfrt {
// The storage of ffrt_mutex_t and ffrt_cond_t promises only 4-byte alignment, too little for the
// std:: objects underneath; the storage therefore holds a pointer to them.
template <typename Object, typename Storage> Object *LoadObject(const Storage *storage)
{
    static_assert(sizeof(Object *) <= sizeof(storage->storage));
    Object *object = nullptr;
    std::memcpy(&object, storage->storage, sizeof(object));
    return object;
}

template <typename Object, typename Storage> void StoreObject(Storage *storage, Object *object)
{
    std::memcpy(storage->storage, &object, sizeof(object));
}

// What the init and destroy calls of both objects do.
template <typename Object, typename Storage> int CreateObject(Storage *storage)
{
    if (storage == nullptr) {
        return ffrt_error_inval;
    }
    auto *object = new (std::nothrow) Object();
    StoreObject(storage, object);
    return object == nullptr ? ffrt_error_nomem : ffrt_success;
}

template <typename Object, typename Storage> int DestroyObject(Storage *storage)
{
    if (storage == nullptr) {
        return ffrt_error_inval;
    }
    delete LoadObject<Object>(storage);
    StoreObject<Object>(storage, nullptr);
    return ffrt_success;
}

// Waiters queue in arrival order and unlocking hands the mutex straight to the first of them, so
// a task that is resumed late still gets it. `guard` is held only briefly: never across a wait
// or a switch.
struct MutexObject {
    std::mutex guard;
    bool locked = false;
    std::deque<Waiter *> waiters;
};

struct CondObject {
    std::mutex guard;
    std::deque<Waiter *> waiters;
};
} // namespace HostFfrt

#endif // HOST_FFRT_SYNC_OBJECTS_H
