#ifndef FFRT_API_CPP_MUTEX_H
#define FFRT_API_CPP_MUTEX_H

#include "c/mutex.h"

namespace ffrt {
// Waiting for it suspends the task instead of holding its worker.
class mutex : public ffrt_mutex_t {
public:
    mutex() { ffrt_mutex_init(this, nullptr); }
    ~mutex() { ffrt_mutex_destroy(this); }
    mutex(const mutex &) = delete;
    mutex &operator=(const mutex &) = delete;

    bool try_lock() { return ffrt_mutex_trylock(this) == ffrt_success; }
    void lock() { ffrt_mutex_lock(this); }
    void unlock() { ffrt_mutex_unlock(this); }
};

class recursive_mutex : public ffrt_mutex_t {
public:
    recursive_mutex()
    {
        ffrt_mutexattr_init(&attr_);
        ffrt_mutexattr_settype(&attr_, ffrt_mutex_recursive);
        ffrt_mutex_init(this, &attr_);
    }
    ~recursive_mutex()
    {
        ffrt_mutexattr_destroy(&attr_);
        ffrt_mutex_destroy(this);
    }
    recursive_mutex(const recursive_mutex &) = delete;
    recursive_mutex &operator=(const recursive_mutex &) = delete;

    bool try_lock() { return ffrt_mutex_trylock(this) == ffrt_success; }
    void lock() { ffrt_mutex_lock(this); }
    void unlock() { ffrt_mutex_unlock(this); }

private:
    ffrt_mutexattr_t attr_ {};
};
} // namespace ffrt

#endif // FFRT_API_CPP_MUTEX_H
