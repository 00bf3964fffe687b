#include <algorithm>
#include <chrono>
#include <mutex>
#include <optional>

#include "c/condition_variable.h"
#include "c/mutex.h"
#include "runtime.h"
#include "sync_objects.h"

using HostFfrt::CondObject;
using HostFfrt::LoadObject;
using HostFfrt::MutexObject;
using HostFfrt::Waiter;

namespace {
CondObject *Cond(ffrt_cond_t *cond)
{
    return cond == nullptr ? nullptr : LoadObject<CondObject>(cond);
}

MutexObject *Mutex(ffrt_mutex_t *mutex)
{
    return mutex == nullptr ? nullptr : LoadObject<MutexObject>(mutex);
}

// Queues the waiter before the mutex is let go, so a notify made after that is never missed.
// Returns false when the deadline passed first.
bool WaitOn(CondObject &cond, ffrt_mutex_t *mutex, std::optional<std::chrono::steady_clock::time_point> deadline)
{
    Waiter waiter;
    std::unique_lock<std::mutex> guard(cond.guard);
    cond.waiters.push_back(&waiter);
    ffrt_mutex_unlock(mutex);
    const bool woken = waiter.Park(&guard, deadline);
    if (!woken) {
        guard.lock();
        auto position = std::find(cond.waiters.begin(), cond.waiters.end(), &waiter);
        if (position != cond.waiters.end()) {
            cond.waiters.erase(position);
        }
        guard.unlock();
    }
    ffrt_mutex_lock(mutex);
    return woken;
}

// Wakes waiters in arrival order; those whose deadline claimed them already stay asleep.
void WakeAll(CondObject &cond)
{
    std::lock_guard<std::mutex> guard(cond.guard);
    for (Waiter *waiter : cond.waiters) {
        waiter->Wake();
    }
    cond.waiters.clear();
}
} // namespace

int ffrt_cond_init(ffrt_cond_t *cond, const ffrt_condattr_t *)
{
    return HostFfrt::CreateObject<CondObject>(cond);
}

int ffrt_cond_broadcast(ffrt_cond_t *cond)
{
    CondObject *object = Cond(cond);
    if (object == nullptr) {
        return ffrt_error_inval;
    }
    WakeAll(*object);
    return ffrt_success;
}

int ffrt_cond_wait(ffrt_cond_t *cond, ffrt_mutex_t *mutex)
{
    CondObject *object = Cond(cond);
    MutexObject *held = Mutex(mutex);
    if (object == nullptr || held == nullptr) {
        return ffrt_error_inval;
    }
    WaitOn(*object, mutex, std::nullopt);
    return ffrt_success;
}

int ffrt_cond_timedwait(ffrt_cond_t *cond, ffrt_mutex_t *mutex, const struct timespec *time_point)
{
    CondObject *object = Cond(cond);
    MutexObject *held = Mutex(mutex);
    if (object == nullptr || held == nullptr || time_point == nullptr) {
        return ffrt_error_inval;
    }
    const std::chrono::steady_clock::time_point deadline {
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(
            std::chrono::seconds(time_point->tv_sec) + std::chrono::nanoseconds(time_point->tv_nsec))};
    return WaitOn(*object, mutex, deadline) ? ffrt_success : ffrt_error_timedout;
}

int ffrt_cond_destroy(ffrt_cond_t *cond)
{
    return HostFfrt::DestroyObject<CondObject>(cond);
}
