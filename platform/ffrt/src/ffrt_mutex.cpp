#include <mutex>
#include <new>
#include <optional>

#include "c/mutex.h"
#include "runtime.h"
#include "sync_objects.h"

using HostFfrt::LoadObject;
using HostFfrt::MutexObject;
using HostFfrt::StoreObject;
using HostFfrt::Waiter;

int ffrt_mutexattr_init(ffrt_mutexattr_t *attr)
{
    if (attr == nullptr) {
        return ffrt_error_inval;
    }
    attr->storage = ffrt_mutex_default;
    return ffrt_success;
}

int ffrt_mutexattr_settype(ffrt_mutexattr_t *attr, int type)
{
    if (attr == nullptr || (type != ffrt_mutex_normal && type != ffrt_mutex_recursive)) {
        return ffrt_error_inval;
    }
    attr->storage = type;
    return ffrt_success;
}

int ffrt_mutexattr_gettype(ffrt_mutexattr_t *attr, int *type)
{
    if (attr == nullptr || type == nullptr) {
        return ffrt_error_inval;
    }
    *type = static_cast<int>(attr->storage);
    return ffrt_success;
}

int ffrt_mutexattr_destroy(ffrt_mutexattr_t *attr)
{
    return attr == nullptr ? ffrt_error_inval : ffrt_success;
}

int ffrt_mutex_init(ffrt_mutex_t *mutex, const ffrt_mutexattr_t *attr)
{
    if (mutex == nullptr) {
        return ffrt_error_inval;
    }
    const bool recursive = attr != nullptr && attr->storage == ffrt_mutex_recursive;
    auto *object = new (std::nothrow) MutexObject(recursive);
    StoreObject(mutex, object);
    return object == nullptr ? ffrt_error_nomem : ffrt_success;
}

namespace {
MutexObject *Mutex(ffrt_mutex_t *mutex)
{
    return mutex == nullptr ? nullptr : LoadObject<MutexObject>(mutex);
}

// Takes the mutex if it is free or already ours (recursive only); needs the guard.
bool TryTake(MutexObject &object, const void *self)
{
    if (!object.locked) {
        object.locked = true;
        object.owner = self;
        object.depth = 1;
        return true;
    }
    if (object.recursive && object.owner == self) {
        ++object.depth;
        return true;
    }
    return false;
}
} // namespace

int ffrt_mutex_lock(ffrt_mutex_t *mutex)
{
    MutexObject *object = Mutex(mutex);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    Waiter waiter;
    std::unique_lock<std::mutex> guard(object->guard);
    if (TryTake(*object, waiter.Identity())) {
        return ffrt_success;
    }
    object->waiters.push_back(&waiter);
    // The unlocking side makes us the owner before it wakes us.
    waiter.Park(&guard, std::nullopt);
    return ffrt_success;
}

int ffrt_mutex_trylock(ffrt_mutex_t *mutex)
{
    MutexObject *object = Mutex(mutex);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    std::lock_guard<std::mutex> guard(object->guard);
    return TryTake(*object, Waiter::CurrentIdentity()) ? ffrt_success : ffrt_error_busy;
}

int ffrt_mutex_unlock(ffrt_mutex_t *mutex)
{
    MutexObject *object = Mutex(mutex);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    std::lock_guard<std::mutex> guard(object->guard);
    if (--object->depth > 0) {
        return ffrt_success;
    }
    if (object->waiters.empty()) {
        object->locked = false;
        object->owner = nullptr;
        return ffrt_success;
    }
    Waiter *next = object->waiters.front();
    object->waiters.pop_front();
    object->owner = next->Identity();
    object->depth = 1;
    next->Wake();
    return ffrt_success;
}

int ffrt_mutex_destroy(ffrt_mutex_t *mutex)
{
    if (mutex == nullptr) {
        return ffrt_error_inval;
    }
    delete LoadObject<MutexObject>(mutex);
    StoreObject<MutexObject>(mutex, nullptr);
    return ffrt_success;
}
