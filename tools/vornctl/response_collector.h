#ifndef VORN_TOOLS_VORNCTL_RESPONSE_COLLECTOR_H
#define VORN_TOOLS_VORNCTL_RESPONSE_COLLECTOR_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "iremote_object.h"
#include "vorn_request_callback_stub.h"

namespace Vornctl {
// The callback object vornctl hands the service (the client kit's stub), with a count of the
// responses it was sent so that a command can wait for them. Responses that arrive once the
// collector is gone are dropped.
class ResponseCollector : public std::enable_shared_from_this<ResponseCollector> {
public:
    using Listener = std::function<void(const std::string &)>;

    static std::shared_ptr<ResponseCollector> Create(Listener listener);

    OHOS::sptr<OHOS::IRemoteObject> Callback() const;
    size_t Count() const;
    // Waits until at least `count` responses arrived or the timeout passed.
    bool WaitForCount(size_t count, std::chrono::milliseconds timeout) const;

private:
    explicit ResponseCollector(Listener listener);
    void Add(const std::string &response);

    const Listener listener_;
    OHOS::sptr<OHOS::Vorn::VornRequestCallbackStub> stub_;
    mutable std::mutex mutex_;
    mutable std::condition_variable arrived_;
    size_t count_ = 0;
};
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_RESPONSE_COLLECTOR_H
