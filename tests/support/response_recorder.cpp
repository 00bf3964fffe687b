#include "response_recorder.h"

#include "ipc_host.h"

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

std::vector<std::string> ResponseRecorder::Responses() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return responses_;
}

size_t ResponseRecorder::Count() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return responses_.size();
}

bool ResponseRecorder::WaitForCount(size_t count, std::chrono::milliseconds timeout) const
{
    std::unique_lock<std::mutex> lock(mutex_);
    return arrived_.wait_for(lock, timeout, [this, count]() { return responses_.size() >= count; });
}
} // namespace VornTest
