#ifndef VORN_TOOLS_CLIENT_RESPONSE_RECORDER_H
#define VORN_TOOLS_CLIENT_RESPONSE_RECORDER_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "i_vorn_request_callback.h"
#include "iremote_stub.h"

namespace VornClient {
// A client's callback object, as a client process hosts it: records every response it is sent,
// in arrival order.
class ResponseRecorder : public OHOS::IRemoteStub<OHOS::Vorn::IVornRequestCallback> {
public:
    using Listener = std::function<void(const std::string &)>;

    explicit ResponseRecorder(Listener listener = nullptr);

    int OnRemoteRequest(uint32_t code, OHOS::MessageParcel &data, OHOS::MessageParcel &reply,
        OHOS::MessageOption &option) override;
    void OnResponse(const std::string &response) override;

    // What the service holds for this callback when the client is another process: a proxy
    // reached through the platform's broker registry.
    OHOS::sptr<OHOS::Vorn::IVornRequestCallback> RemoteCallback();

    // What arrived, counting every response already sent to this object.
    std::vector<std::string> Responses() const;
    size_t Count() const;
    // Waits until at least `count` responses arrived or the timeout passed.
    bool WaitForCount(size_t count, std::chrono::milliseconds timeout) const;

private:
    void AwaitSentResponses() const;

    Listener listener_;
    mutable std::mutex mutex_;
    mutable std::condition_variable arrived_;
    std::vector<std::string> responses_;
};
} // namespace VornClient

#endif // VORN_TOOLS_CLIENT_RESPONSE_RECORDER_H
