#ifndef HOST_EVENTHANDLER_RUNNER_ACTIVITY_H
#define HOST_EVENTHANDLER_RUNNER_ACTIVITY_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace OHOS {
namespace AppExecFwk {
// Counts the events pending or being handled across every runner of the process.
class RunnerActivity {
public:
    static RunnerActivity &Instance();

    void Add(size_t count);
    void Remove(size_t count);
    bool WaitIdle(std::chrono::milliseconds timeout);

private:
    RunnerActivity() = default;

    std::mutex mutex_;
    std::condition_variable idle_;
    size_t busy_ = 0;
};
} // namespace AppExecFwk
} // namespace OHOS

#endif // HOST_EVENTHANDLER_RUNNER_ACTIVITY_H
