#include <chrono>
#include <new>

#include "c/condition_variable.h"
#include "runtime.h"
#include "sync_objects.h"

using HostFfrt::CondObject;
using HostFfrt::LoadObject;
using HostFfrt::MutexObject;
using HostFfrt::StoreObject;

namespace {
CondObject *Cond(ffrt_cond_t *cond)
{
    return cond == nullptr ? nullptr : LoadObject<CondObject>(cond);
}

// Only a normal mutex can be waited with: the std:: condition underneath needs a std::mutex.
MutexObject *WaitableMutex(ffrt_mutex_t *mutex)
{
    MutexObject *object = mutex == nullptr ? nullptr : LoadObject<MutexObject>(mutex);
    return object == nullptr || object->recursive ? nullptr : object;
}

// Waits with the mutex handed to the condition, and leaves the ownership bookkeeping as it was.
template <typename Wait>
void WaitOn(MutexObject &mutex, Wait &&wait)
{
    std::unique_lock<std::mutex> lock(mutex.mutex, std::adopt_lock);
    mutex.owner.store(std::thread::id(), std::memory_order_relaxed);
    {
        HostFfrt::TaskSuspension suspension;
        wait(lock);
    }
    mutex.owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    mutex.depth = 1;
    lock.release();
}
} // namespace

int ffrt_cond_init(ffrt_cond_t *cond, const ffrt_condattr_t *)
{
    if (cond == nullptr) {
        return ffrt_error_inval;
    }
    auto *object = new (std::nothrow) CondObject();
    StoreObject(cond, object);
    return object == nullptr ? ffrt_error_nomem : ffrt_success;
}

int ffrt_cond_signal(ffrt_cond_t *cond)
{
    CondObject *object = Cond(cond);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    object->cond.notify_one();
    return ffrt_success;
}

int ffrt_cond_broadcast(ffrt_cond_t *cond)
{
    CondObject *object = Cond(cond);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    object->cond.notify_all();
    return ffrt_success;
}

int ffrt_cond_wait(ffrt_cond_t *cond, ffrt_mutex_t *mutex)
{
    CondObject *object = Cond(cond);
    MutexObject *held = WaitableMutex(mutex);
    if (object == nullptr || held == nullptr) {
        return ffrt_error_inval;
    }
    WaitOn(*held, [object](std::unique_lock<std::mutex> &lock) { object->cond.wait(lock); });
    return ffrt_success;
}

int ffrt_cond_timedwait(ffrt_cond_t *cond, ffrt_mutex_t *mutex, const struct timespec *time_point)
{
    CondObject *object = Cond(cond);
    MutexObject *held = WaitableMutex(mutex);
    if (object == nullptr || held == nullptr || time_point == nullptr) {
        return ffrt_error_inval;
    }
    const std::chrono::steady_clock::time_point deadline {std::chrono::duration_cast<
        std::chrono::steady_clock::duration>(std::chrono::seconds(time_point->tv_sec) +
        std::chrono::nanoseconds(time_point->tv_nsec))};
    std::cv_status status = std::cv_status::no_timeout;
    WaitOn(*held, [object, deadline, &status](std::unique_lock<std::mutex> &lock) {
        status = object->cond.wait_until(lock, deadline);
    });
    return status == std::cv_status::timeout ? ffrt_error_timedout : ffrt_success;
}

int ffrt_cond_destroy(ffrt_cond_t *cond)
{
    if (cond == nullptr) {
        return ffrt_error_inval;
    }
    delete LoadObject<CondObject>(cond);
    StoreObject<CondObject>(cond, nullptr);
    return ffrt_success;
}
