#ifndef VORN_UTILS_VORN_THREAD_H
#define VORN_UTILS_VORN_THREAD_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "async_task_executor.h"

namespace OHOS {
namespace Vorn {
enum VornThreadPoolType : int32_t {
    HTTP_POOL = 0,
    BINDER_POOL = 1,
};

// The two process-wide pools: outgoing HTTPS work and incoming IPC work. Created on first use
// and never torn down while the process runs.
class VornThread {
public:
    // Any type other than HTTP_POOL selects the binder pool.
    static std::shared_ptr<AsyncTaskExecutor> GetThreadPool(VornThreadPoolType type);

    struct PoolStatus {
        std::string name;
        int64_t running = 0;
        int64_t waiting = 0;
    };
    // The pools made so far, with their tasks running and waiting; creates none.
    static std::vector<PoolStatus> PoolStatuses();

private:
    // Declaration order fixes destruction at exit: binder pool, then HTTP pool, then the lock.
    static std::mutex poolLock_;
    static std::shared_ptr<AsyncTaskExecutor> httpPool_;
    static std::shared_ptr<AsyncTaskExecutor> binderPool_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_VORN_THREAD_H
