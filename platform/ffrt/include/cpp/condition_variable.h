#ifndef FFRT_API_CPP_CONDITION_VARIABLE_H
#define FFRT_API_CPP_CONDITION_VARIABLE_H

#include <chrono>
#include <mutex>
#include <utility>

#include "c/condition_variable.h"
#include "cpp/mutex.h"

namespace ffrt {
enum class cv_status { no_timeout, timeout };

// Waiting suspends the task instead of holding its worker. Deadlines are turned into the steady
// clock, so a change of the wall clock never shortens or stretches a wait.
class condition_variable : public ffrt_cond_t {
public:
    condition_variable() { ffrt_cond_init(this, nullptr); }
    ~condition_variable() { ffrt_cond_destroy(this); }
    condition_variable(const condition_variable &) = delete;
    condition_variable &operator=(const condition_variable &) = delete;

    template <typename Clock, typename Duration, typename Pred>
    bool wait_until(std::unique_lock<mutex> &lk, const std::chrono::time_point<Clock, Duration> &tp, Pred &&pred)
    {
        while (!pred()) {
            if (wait_until(lk, tp) == cv_status::timeout) {
                return pred();
            }
        }
        return true;
    }

    template <typename Clock, typename Duration>
    cv_status wait_until(std::unique_lock<mutex> &lk, const std::chrono::time_point<Clock, Duration> &tp)
    {
        return wait_steady(lk, std::chrono::steady_clock::now() + (tp - Clock::now()));
    }

    template <typename Pred> void wait(std::unique_lock<mutex> &lk, Pred &&pred)
    {
        while (!pred()) {
            wait(lk);
        }
    }

    void wait(std::unique_lock<mutex> &lk) { ffrt_cond_wait(this, lk.mutex()); }
    void notify_all() noexcept { ffrt_cond_broadcast(this); }

private:
    template <typename Duration>
    cv_status wait_steady(std::unique_lock<mutex> &lk,
        const std::chrono::time_point<std::chrono::steady_clock, Duration> &deadline)
    {
        using namespace std::chrono;
        // libstdc++'s steady clock is CLOCK_MONOTONIC, the clock the C call measures against.
        const nanoseconds sinceEpoch = duration_cast<nanoseconds>(deadline.time_since_epoch());
        const seconds whole = duration_cast<seconds>(sinceEpoch);
        struct timespec ts;
        ts.tv_sec = static_cast<time_t>(whole.count());
        ts.tv_nsec = static_cast<long>((sinceEpoch - whole).count());
        if (ts.tv_sec < 0) {
            ts.tv_sec = 0;
            ts.tv_nsec = 0;
        }
        if (ffrt_cond_timedwait(this, lk.mutex(), &ts) == ffrt_error_timedout) {
            return cv_status::timeout;
        }
        return steady_clock::now() < deadline ? cv_status::no_timeout : cv_status::timeout;
    }
};
} // namespace ffrt

#endif // FFRT_API_CPP_CONDITION_VARIABLE_H
