#include "pending_request.h"

#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
PendingRequest::PendingRequest(VornClient::ResponseHandler onResponse, VornClient::ServiceDiedHandler onServiceDied,
    Clock::time_point deadline)
    : onResponse_(std::move(onResponse)), onServiceDied_(std::move(onServiceDied)), deadline_(deadline)
{
}

void PendingRequest::Deliver(const std::string &text)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (!IsWaiting()) {
        VORN_LOGW("VornClient response for a request no longer waiting, dropped");
        return;
    }
    std::optional<VornResponse> response = VornResponse::FromJson(text);
    if (!response) {
        VORN_LOGE("VornClient unreadable response dropped: %{private}s", text.c_str());
        return;
    }
    if (onResponse_) {
        onResponse_(*response);
    }
}

void PendingRequest::EndByServiceDeath()
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (!IsWaiting()) {
        return;
    }
    closed_.store(true, std::memory_order_release);
    if (onServiceDied_) {
        onServiceDied_();
    }
}

void PendingRequest::Close()
{
    std::lock_guard<std::mutex> lock(mutex_);
    closed_.store(true, std::memory_order_release);
}

bool PendingRequest::IsWaiting() const
{
    return !closed_.load(std::memory_order_acquire) && Clock::now() < deadline_;
}
} // namespace Vorn
} // namespace OHOS
