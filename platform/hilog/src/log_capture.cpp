#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <unordered_set>

#include "capture_hub.h"
#include "hilog_host.h"

namespace HostPlatform {
namespace {
// The lines one capture has seen.
struct CaptureBuffer {
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::vector<LogRecord> records;

    size_t CountLocked(const std::string &text) const
    {
        return static_cast<size_t>(std::count_if(records.begin(), records.end(),
            [&text](const LogRecord &record) { return record.text == text; }));
    }
};

class CaptureHub {
public:
    static CaptureHub &Get()
    {
        // Never destroyed: code running during static destruction may still log.
        static CaptureHub *hub = new CaptureHub();
        return *hub;
    }

    void Add(CaptureBuffer *buffer)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        buffers_.insert(buffer);
        live_.store(buffers_.size(), std::memory_order_relaxed);
    }

    void Remove(CaptureBuffer *buffer)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        buffers_.erase(buffer);
        live_.store(buffers_.size(), std::memory_order_relaxed);
    }

    void Publish(const std::vector<LogRecord> &records)
    {
        if (records.empty() || live_.load(std::memory_order_relaxed) == 0) {
            return;
        }
        std::lock_guard<std::mutex> lock(mutex_);
        for (CaptureBuffer *buffer : buffers_) {
            {
                std::lock_guard<std::mutex> bufferLock(buffer->mutex);
                buffer->records.insert(buffer->records.end(), records.begin(), records.end());
            }
            buffer->changed.notify_all();
        }
    }

private:
    CaptureHub() = default;

    std::mutex mutex_;
    std::unordered_set<CaptureBuffer *> buffers_;
    std::atomic<size_t> live_ {0};
};
} // namespace

void PublishToCaptures(const std::vector<LogRecord> &records)
{
    CaptureHub::Get().Publish(records);
}

struct LogCapture::Impl {
    CaptureBuffer buffer;
};

LogCapture::LogCapture() : impl_(std::make_unique<Impl>())
{
    CaptureHub::Get().Add(&impl_->buffer);
}

LogCapture::~LogCapture()
{
    CaptureHub::Get().Remove(&impl_->buffer);
}

std::vector<LogRecord> LogCapture::Records() const
{
    std::lock_guard<std::mutex> lock(impl_->buffer.mutex);
    return impl_->buffer.records;
}

size_t LogCapture::Count(const std::string &text) const
{
    std::lock_guard<std::mutex> lock(impl_->buffer.mutex);
    return impl_->buffer.CountLocked(text);
}

size_t LogCapture::CountContaining(const std::string &fragment) const
{
    std::lock_guard<std::mutex> lock(impl_->buffer.mutex);
    const std::vector<LogRecord> &records = impl_->buffer.records;
    return static_cast<size_t>(std::count_if(records.begin(), records.end(),
        [&fragment](const LogRecord &record) { return record.text.find(fragment) != std::string::npos; }));
}

bool LogCapture::WaitFor(const std::string &text, std::chrono::milliseconds timeout, size_t count) const
{
    CaptureBuffer &buffer = impl_->buffer;
    std::unique_lock<std::mutex> lock(buffer.mutex);
    return buffer.changed.wait_for(lock, timeout, [&] { return buffer.CountLocked(text) >= count; });
}

void LogCapture::Clear()
{
    std::lock_guard<std::mutex> lock(impl_->buffer.mutex);
    impl_->buffer.records.clear();
}
} // namespace HostPlatform
