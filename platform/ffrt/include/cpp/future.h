#ifndef FFRT_INNER_API_CPP_FUTURE_H
#define FFRT_INNER_API_CPP_FUTURE_H

#include <chrono>
#include <exception>
#include <future>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "cpp/condition_variable.h"
#include "cpp/mutex.h"

namespace ffrt {
enum class future_status { ready, timeout, deferred };

namespace detail {
// What a promise and its future share; waiting on it suspends the task, not its worker.
class shared_state_base {
public:
    void wait()
    {
        std::unique_lock<mutex> lk(mutex_);
        cond_.wait(lk, [this] { return ready_; });
    }

    template <typename Clock, typename Duration>
    future_status wait_until(const std::chrono::time_point<Clock, Duration> &tp)
    {
        std::unique_lock<mutex> lk(mutex_);
        return cond_.wait_until(lk, tp, [this] { return ready_; }) ? future_status::ready : future_status::timeout;
    }

    void set_exception(std::exception_ptr error)
    {
        complete([&] { error_ = std::move(error); });
    }

    bool mark_retrieved() { return !std::exchange(retrieved_, true); }
    bool satisfied()
    {
        std::unique_lock<mutex> lk(mutex_);
        return ready_;
    }

protected:
    template <typename Store> void complete(Store &&store)
    {
        std::unique_lock<mutex> lk(mutex_);
        if (ready_) {
            throw std::future_error(std::future_errc::promise_already_satisfied);
        }
        store();
        ready_ = true;
        // Woken after the unlock, a waiter finds the mutex free instead of parking on it again.
        // The promise still holds the state, so it outlives the notify.
        lk.unlock();
        cond_.notify_all();
    }

    void rethrow_error()
    {
        if (error_ != nullptr) {
            std::rethrow_exception(error_);
        }
    }

private:
    mutex mutex_;
    condition_variable cond_;
    bool ready_ = false;
    bool retrieved_ = false; // touched only by the promise's owner
    std::exception_ptr error_;
};

template <typename R> class shared_state : public shared_state_base {
public:
    template <typename V> void set_value(V &&value)
    {
        complete([&] { value_.emplace(std::forward<V>(value)); });
    }
    R take()
    {
        wait();
        rethrow_error();
        return std::move(*value_);
    }

private:
    std::optional<R> value_;
};

template <> class shared_state<void> : public shared_state_base {
public:
    void set_value()
    {
        complete([] {});
    }
    void take()
    {
        wait();
        rethrow_error();
    }
};
} // namespace detail

template <typename R> class promise;

template <typename R> class future {
public:
    future() noexcept = default;
    future(future &&) noexcept = default;
    future &operator=(future &&) noexcept = default;
    future(const future &) = delete;
    future &operator=(const future &) = delete;

    // Waits for the result and hands it over; the future is no longer valid afterwards. A stored
    // exception is thrown here.
    R get()
    {
        check_state();
        std::shared_ptr<detail::shared_state<R>> state = std::move(state_);
        return state->take();
    }

    void wait() const
    {
        check_state();
        state_->wait();
    }

    template <typename Rep, typename Period> future_status wait_for(const std::chrono::duration<Rep, Period> &d) const
    {
        return wait_until(std::chrono::steady_clock::now() + d);
    }

    template <typename Clock, typename Duration>
    future_status wait_until(const std::chrono::time_point<Clock, Duration> &tp) const
    {
        check_state();
        return state_->wait_until(tp);
    }

private:
    friend class promise<R>;
    explicit future(std::shared_ptr<detail::shared_state<R>> state) noexcept : state_(std::move(state)) {}

    void check_state() const
    {
        if (state_ == nullptr) {
            throw std::future_error(std::future_errc::no_state);
        }
    }

    std::shared_ptr<detail::shared_state<R>> state_;
};

namespace detail {
template <typename R> class promise_base {
public:
    promise_base() : state_(std::make_shared<shared_state<R>>()) {}
    promise_base(promise_base &&) noexcept = default;
    promise_base &operator=(promise_base &&other) noexcept
    {
        abandon();
        state_ = std::move(other.state_);
        return *this;
    }
    promise_base(const promise_base &) = delete;
    promise_base &operator=(const promise_base &) = delete;
    // A promise that goes away unsatisfied leaves a broken_promise error for its future.
    ~promise_base() { abandon(); }

    void set_exception(std::exception_ptr error) { checked_state().set_exception(std::move(error)); }

protected:
    shared_state<R> &checked_state()
    {
        if (state_ == nullptr) {
            throw std::future_error(std::future_errc::no_state);
        }
        return *state_;
    }

    std::shared_ptr<shared_state<R>> state_;

private:
    void abandon()
    {
        if (state_ == nullptr || state_.use_count() == 1 || state_->satisfied()) {
            return;
        }
        state_->set_exception(std::make_exception_ptr(std::future_error(std::future_errc::broken_promise)));
    }
};
} // namespace detail

template <typename R> class promise : public detail::promise_base<R> {
public:
    future<R> get_future()
    {
        if (!this->checked_state().mark_retrieved()) {
            throw std::future_error(std::future_errc::future_already_retrieved);
        }
        return future<R>(this->state_);
    }
    void set_value(const R &value) { this->checked_state().set_value(value); }
    void set_value(R &&value) { this->checked_state().set_value(std::move(value)); }
};

template <> class promise<void> : public detail::promise_base<void> {
public:
    future<void> get_future()
    {
        if (!checked_state().mark_retrieved()) {
            throw std::future_error(std::future_errc::future_already_retrieved);
        }
        return future<void>(state_);
    }
    void set_value() { checked_state().set_value(); }
};

template <typename Signature> class packaged_task;

// Runs its callable once and leaves the result, or the exception it threw, in its future.
template <typename R, typename... Args> class packaged_task<R(Args...)> {
public:
    packaged_task() noexcept = default;
    template <typename F, typename = std::enable_if_t<!std::is_same_v<std::decay_t<F>, packaged_task>>>
    explicit packaged_task(F &&f) : callable_(std::make_unique<holder<std::decay_t<F>>>(std::forward<F>(f)))
    {
    }
    packaged_task(packaged_task &&) noexcept = default;
    packaged_task &operator=(packaged_task &&) noexcept = default;
    packaged_task(const packaged_task &) = delete;
    packaged_task &operator=(const packaged_task &) = delete;

    future<R> get_future() { return promise_.get_future(); }

    void operator()(Args... args)
    {
        if (callable_ == nullptr) {
            throw std::future_error(std::future_errc::no_state);
        }
        try {
            if constexpr (std::is_void_v<R>) {
                callable_->call(std::forward<Args>(args)...);
                promise_.set_value();
            } else {
                promise_.set_value(callable_->call(std::forward<Args>(args)...));
            }
        } catch (...) {
            promise_.set_exception(std::current_exception());
        }
    }

private:
    struct callable {
        virtual ~callable() = default;
        virtual R call(Args... args) = 0;
    };
    template <typename F> struct holder : callable {
        explicit holder(F &&f) : fn(std::move(f)) {}
        explicit holder(const F &f) : fn(f) {}
        R call(Args... args) override { return fn(std::forward<Args>(args)...); }
        F fn;
    };

    std::unique_ptr<callable> callable_;
    promise<R> promise_;
};

} // namespace ffrt

#endif // FFRT_INNER_API_CPP_FUTURE_H
