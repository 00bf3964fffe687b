#include "delayed_pipe.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

namespace VornTestbed {
DelayedPipe::DelayedPipe(Clock::duration oneWay, size_t bytesPerSecond, Clock::time_point openAt)
    : oneWay_(oneWay), bytesPerSecond_(bytesPerSecond), linkFreeAt_(openAt)
{
}

DelayedPipe::Clock::time_point DelayedPipe::Schedule(size_t size, Clock::time_point now)
{
    Clock::time_point departs = std::max(now, linkFreeAt_);
    if (bytesPerSecond_ > 0) {
        departs += std::chrono::duration_cast<Clock::duration>(
            std::chrono::duration<double>(static_cast<double>(size) / static_cast<double>(bytesPerSecond_)));
    }
    linkFreeAt_ = departs;
    return departs + oneWay_;
}

void DelayedPipe::Push(const char *data, size_t size, Clock::time_point now)
{
    if (ended_ || size == 0) {
        return;
    }
    queue_.push_back({Schedule(size, now), std::string(data, size), 0});
    queuedBytes_ += size;
}

void DelayedPipe::PushEnd(Clock::time_point now)
{
    if (ended_) {
        return;
    }
    ended_ = true;
    queue_.push_back({Schedule(0, now), std::string(), 0});
}

bool DelayedPipe::WantsInput() const
{
    return !ended_ && queuedBytes_ < MAX_QUEUED_BYTES;
}

std::optional<DelayedPipe::Clock::time_point> DelayedPipe::NextDue() const
{
    if (queue_.empty()) {
        return std::nullopt;
    }
    return queue_.front().due;
}

DelayedPipe::Delivery DelayedPipe::Deliver(int fd, Clock::time_point now)
{
    while (!queue_.empty() && queue_.front().due <= now) {
        Chunk &chunk = queue_.front();
        if (chunk.bytes.empty()) {
            ::shutdown(fd, SHUT_WR);
            finished_ = true;
            queue_.pop_front();
            continue;
        }
        ssize_t sent =
            ::send(fd, chunk.bytes.data() + chunk.sent, chunk.bytes.size() - chunk.sent, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            return Delivery::BLOCKED;
        }
        if (sent <= 0) {
            return Delivery::FAILED;
        }
        chunk.sent += static_cast<size_t>(sent);
        if (chunk.sent < chunk.bytes.size()) {
            continue;
        }
        queuedBytes_ -= chunk.bytes.size();
        queue_.pop_front();
    }
    return Delivery::DONE;
}

bool DelayedPipe::Finished() const
{
    return finished_;
}
} // namespace VornTestbed
