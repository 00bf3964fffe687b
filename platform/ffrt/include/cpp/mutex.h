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

    void lock() { ffrt_mutex_lock(this); }
    void unlock() { ffrt_mutex_unlock(this); }
};
} // namespace ffrt

#endif // FFRT_API_CPP_MUTEX_H
