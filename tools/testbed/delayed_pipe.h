#ifndef VORN_TESTBED_DELAYED_PIPE_H
#define VORN_TESTBED_DELAYED_PIPE_H

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>

namespace VornTestbed {
// One direction of a relayed connection, as a network path would carry it: bytes read at time t
// leave no earlier than the path is open, queue behind what is still being sent (when a bandwidth
// is set, a chunk of s bytes occupies the path for s / bandwidth), and arrive one one-way delay
// after they left. Order is kept because every chunk departs after the one before it. The end of
// the stream travels like a last, empty chunk.
class DelayedPipe {
public:
    using Clock = std::chrono::steady_clock;

    // `bytesPerSecond` 0 means no limit; nothing departs before `openAt`.
    DelayedPipe(Clock::duration oneWay, size_t bytesPerSecond, Clock::time_point openAt);

    void Push(const char *data, size_t size, Clock::time_point now);
    void PushEnd(Clock::time_point now);

    // More input is taken until the queue holds this many bytes, so a stalled reader makes the
    // writer wait as a full path would, instead of growing the queue without bound.
    static constexpr size_t MAX_QUEUED_BYTES = 4 * 1024 * 1024;
    bool WantsInput() const;
    // When the first queued chunk arrives; empty when nothing is queued.
    std::optional<Clock::time_point> NextDue() const;

    enum class Delivery { DONE, BLOCKED, FAILED };
    // Writes every chunk that has arrived by `now` to `fd` without blocking; the end of the
    // stream shuts the socket's sending side. BLOCKED when the socket takes no more for now.
    Delivery Deliver(int fd, Clock::time_point now);
    // The end of the stream has been delivered.
    bool Finished() const;

private:
    struct Chunk {
        Clock::time_point due;
        std::string bytes; // empty: the end of the stream
        size_t sent = 0;
    };

    Clock::time_point Schedule(size_t size, Clock::time_point now);

    Clock::duration oneWay_;
    size_t bytesPerSecond_;
    Clock::time_point linkFreeAt_;
    std::deque<Chunk> queue_;
    size_t queuedBytes_ = 0;
    bool ended_ = false;
    bool finished_ = false;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_DELAYED_PIPE_H
