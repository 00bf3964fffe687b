#include "response_collector.h"

namespace Vornctl {
ResponseCollector::ResponseCollector(Listener listener) : listener_(std::move(listener)) {}

std::shared_ptr<ResponseCollector> ResponseCollector::Create(Listener listener)
{
    std::shared_ptr<ResponseCollector> collector(new ResponseCollector(std::move(listener)));
    std::weak_ptr<ResponseCollector> weak = collector;
    collector->stub_ = new OHOS::Vorn::VornRequestCallbackStub([weak](const std::string &response) {
        if (auto alive = weak.lock()) {
            alive->Add(response);
        }
    });
    return collector;
}

OHOS::sptr<OHOS::IRemoteObject> ResponseCollector::Callback() const
{
    return stub_->AsObject();
}

size_t ResponseCollector::Count() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return count_;
}

bool ResponseCollector::WaitForCount(size_t count, std::chrono::milliseconds timeout) const
{
    std::unique_lock<std::mutex> lock(mutex_);
    return arrived_.wait_for(lock, timeout, [this, count]() { return count_ >= count; });
}

void ResponseCollector::Add(const std::string &response)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        ++count_;
        // Under the lock so that the listener sees responses in the order they were counted.
        if (listener_) {
            listener_(response);
        }
    }
    arrived_.notify_all();
}
} // namespace Vornctl
