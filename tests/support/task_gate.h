#ifndef VORN_TESTS_SUPPORT_TASK_GATE_H
#define VORN_TESTS_SUPPORT_TASK_GATE_H

#include <chrono>
#include <functional>
#include <future>

namespace VornTest {
// A task that holds its serial queue or runner until Open(), so that tests can line up work
// behind it; WaitStarted() tells that it occupies the queue.
class TaskGate {
public:
    std::function<void()> Blocker()
    {
        return [this, opened = opened_] {
            started_.set_value();
            opened.wait();
        };
    }
    bool WaitStarted(std::chrono::milliseconds timeout)
    {
        return started_.get_future().wait_for(timeout) == std::future_status::ready;
    }
    void Open() { gate_.set_value(); }

private:
    std::promise<void> started_;
    std::promise<void> gate_;
    std::shared_future<void> opened_ = gate_.get_future().share();
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_TASK_GATE_H
