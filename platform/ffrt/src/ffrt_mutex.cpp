#include <mutex>
#include <optional>

#include "c/mutex.h"
#include "runtime.h"
#include "sync_objects.h"

using HostFfrt::LoadObject;
using HostFfrt::MutexObject;
using HostFfrt::Waiter;

int ffrt_mutex_init(ffrt_mutex_t *mutex, const ffrt_mutexattr_t *)
{
    return HostFfrt::CreateObject<MutexObject>(mutex);
}

namespace {
MutexObject *Mutex(ffrt_mutex_t *mutex)
{
    return mutex == nullptr ? nullptr : LoadObject<MutexObject>(mutex);
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
    if (!object->locked) {
        object->locked = true;
        return ffrt_success;
    }
    object->waiters.push_back(&waiter);
    // The unlocking side hands the mutex over to us before it wakes us.
    waiter.Park(&guard, std::nullopt);
    return ffrt_success;
}

int ffrt_mutex_unlock(ffrt_mutex_t *mutex)
{
    MutexObject *object = Mutex(mutex);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    std::lock_guard<std::mutex> guard(object->guard);
    if (object->waiters.empty()) {
        object->locked = false;
        return ffrt_success;
    }
    // The mutex stays locked: it passes to the first waiter.
    Waiter *next = object->waiters.front();
    object->waiters.pop_front();
    next->Wake();
    return ffrt_success;
}

int ffrt_mutex_destroy(ffrt_mutex_t *mutex)
{
    return HostFfrt::DestroyObject<MutexObject>(mutex);
}
