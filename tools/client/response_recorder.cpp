#include "response_recorder.h"

#include "ipc_host.h"
#include "ipc_types.h"

namespace VornClient {
namespace {
// The service answers with one-way calls; what it sent before Responses() or Count() was asked
// is counted once the platform has handed it over, which normally takes microseconds.
constexpr std::chrono::seconds DELIVERY_WAIT{30};
} // namespace

ResponseRecorder::ResponseRecorder(Listener listener) : listener_(std::move(listener)) {}

int ResponseRecorder::OnRemoteRequest(uint32_t code, OHOS::MessageParcel &data, OHOS::MessageParcel &reply,
    OHOS::MessageOption &option)
{
    if (code != ON_RESPONSE) {
        return OHOS::IPCObjectStub::OnRemoteRequest(code, data, reply, option);
    }
    if (data.ReadInterfaceToken() != GetDescriptor()) {
        return OHOS::ERR_INVALID_DATA;
    }
    OnResponse(data.ReadString());
    return OHOS::ERR_NONE;
}

void ResponseRecorder::OnResponse(const std::string &response)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        responses_.push_back(response);
        // Called under the lock so that listeners see responses in the order they were recorded.
        if (listener_) {
            listener_(response);
        }
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
} // namespace VornClient
