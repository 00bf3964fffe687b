#include <new>

#include "c/mutex.h"
#include "runtime.h"
#include "sync_objects.h"

using HostFfrt::LoadObject;
using HostFfrt::MutexObject;
using HostFfrt::StoreObject;

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

int ffrt_mutex_lock(ffrt_mutex_t *mutex)
{
    MutexObject *object = mutex == nullptr ? nullptr : LoadObject<MutexObject>(mutex);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    const std::thread::id self = std::this_thread::get_id();
    if (object->recursive && object->owner.load(std::memory_order_relaxed) == self) {
        ++object->depth;
        return ffrt_success;
    }
    if (!object->mutex.try_lock()) {
        HostFfrt::TaskSuspension suspension;
        object->mutex.lock();
    }
    object->owner.store(self, std::memory_order_relaxed);
    object->depth = 1;
    return ffrt_success;
}

int ffrt_mutex_trylock(ffrt_mutex_t *mutex)
{
    MutexObject *object = mutex == nullptr ? nullptr : LoadObject<MutexObject>(mutex);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    const std::thread::id self = std::this_thread::get_id();
    if (object->recursive && object->owner.load(std::memory_order_relaxed) == self) {
        ++object->depth;
        return ffrt_success;
    }
    if (!object->mutex.try_lock()) {
        return ffrt_error_busy;
    }
    object->owner.store(self, std::memory_order_relaxed);
    object->depth = 1;
    return ffrt_success;
}

int ffrt_mutex_unlock(ffrt_mutex_t *mutex)
{
    MutexObject *object = mutex == nullptr ? nullptr : LoadObject<MutexObject>(mutex);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    if (--object->depth > 0) {
        return ffrt_success;
    }
    object->owner.store(std::thread::id(), std::memory_order_relaxed);
    object->mutex.unlock();
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
