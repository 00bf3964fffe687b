#include "response_recorder.h"

#include "ipc_host.h"

namespace {
// The service answers with one-way calls; what it sent before Responses() or Count() was asked
// is counted once the platform has handed it over, which normally takes microseconds.
constexpr std::chrono::seconds DELIVERY_WAIT {30};
} // namespace

namespace VornTest {
void ResponseRecorder::OnResponse(const std::string &response)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        responses_.push_back(response);
    }
    arrived_.notify_all();
}

OHOS::sptr<OHOS::Vorn::IVornRequestCallback> ResponseRecorder::RemoteCallback()
{
    return OHOS::iface_cast<OHOS::Vorn::IVornRequestCallback>(HostPlatform::MakeRemoteProxy(AsObject()));
}

void ResponseRecorder::AwaitSentResponses() const
{
    HostPlatform::WaitOneWayDelivered(const_cast<ResponseRecorder *>(this)->AsObject(), DELIVERY_WAIT);
}

std::vector<std::string> ResponseRecorder::Responses() const
{
    AwaitSentResponses();
    std::lock_guard<std::mutex> lock(mutex_);
    return responses_;
}

size_t ResponseRecorder::Count() const
{
    AwaitSentResponses();
    std::lock_guard<std::mutex> lock(mutex_);
    return responses_.size();
}

bool ResponseRecorder::WaitForCount(size_t count, std::chrono::milliseconds timeout) const
{
    std::unique_lock<std::mutex> lock(mutex_);
    return arrived_.wait_for(lock, timeout, [this, count]() { return responses_.size() >= count; });
}
} // namespace VornTest
