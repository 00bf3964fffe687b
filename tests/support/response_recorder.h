#ifndef VORN_TESTS_SUPPORT_RESPONSE_RECORDER_H
#define VORN_TESTS_SUPPORT_RESPONSE_RECORDER_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "i_vorn_request_callback.h"
#include "vorn_request_callback_stub.h"

namespace VornTest {
// A client's callback object (the client kit's stub) that records every response it is sent,
// in arrival order.
class ResponseRecorder : public OHOS::Vorn::VornRequestCallbackStub {
public:
    ResponseRecorder() = default;

    void OnResponse(const std::string &response) override;

    // What the service holds for this callback when the client is another process: a proxy
    // reached through the platform's broker registry.
    OHOS::sptr<OHOS::Vorn::IVornRequestCallback> RemoteCallback();

    std::vector<std::string> Responses() const;
    size_t Count() const;
    // Waits until at least `count` responses arrived or the timeout passed.
    bool WaitForCount(size_t count, std::chrono::milliseconds timeout) const;

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable arrived_;
    std::vector<std::string> responses_;
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_RESPONSE_RECORDER_H
