#ifndef VORN_INNER_API_PENDING_REQUEST_H
#define VORN_INNER_API_PENDING_REQUEST_H

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>

#include "vorn_client.h"

namespace OHOS {
namespace Vorn {
// One accepted request while its client may still hear of it. Its handlers run under its own
// lock, so they never overlap, and nothing is delivered once it is closed.
class PendingRequest {
public:
    using Clock = std::chrono::steady_clock;

    PendingRequest(VornClient::ResponseHandler onResponse, VornClient::ServiceDiedHandler onServiceDied,
        Clock::time_point deadline);

    void Deliver(const std::string &text);
    // Tells the client once that the service died, unless the request is closed or past its window.
    void EndByServiceDeath();
    void Close();
    // Lock-free, so that it can be asked while the connection's lock is held.
    bool IsWaiting() const;

private:
    const VornClient::ResponseHandler onResponse_;
    const VornClient::ServiceDiedHandler onServiceDied_;
    const Clock::time_point deadline_;
    std::mutex mutex_;
    std::atomic<bool> closed_ {false};
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_PENDING_REQUEST_H
