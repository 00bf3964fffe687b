#ifndef VORN_TESTBED_RELAY_CONNECTION_H
#define VORN_TESTBED_RELAY_CONNECTION_H

#include <time.h>

#include <atomic>
#include <chrono>
#include <cstddef>

#include "delayed_pipe.h"
#include "unique_fd.h"

namespace VornTestbed {
// How a relayed path behaves: its round-trip time and, optionally, a bandwidth per direction.
struct PathSettings {
    std::chrono::microseconds rtt {0};
    size_t bytesPerSecond = 0; // per direction; 0: no limit
};

// Carries one accepted client connection to its upstream connection through two delayed pipes,
// on the calling thread, until both directions have ended, either socket fails, or `stopping`
// is set. The client socket stays its owner's; the upstream socket is closed at the end.
class RelayConnection {
public:
    using Clock = DelayedPipe::Clock;

    RelayConnection(int clientFd, UniqueFd upstream, const PathSettings &settings, Clock::time_point acceptedAt);
    void Run(const std::atomic<bool> &stopping);

private:
    // Reads what `from` has into `pipe`; false when the socket failed.
    static bool Read(int from, DelayedPipe &pipe);
    static short Events(const DelayedPipe &input, bool outputBlocked);
    timespec PollTimeout(Clock::time_point now) const;

    int clientFd_;
    UniqueFd upstream_;
    DelayedPipe toServer_;
    DelayedPipe toClient_;
    bool serverBlocked_ = false;
    bool clientBlocked_ = false;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_RELAY_CONNECTION_H
