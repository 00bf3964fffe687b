#include "relay_connection.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace VornTestbed {
namespace {
constexpr size_t READ_CHUNK = 16 * 1024;
// Poll wakes at least this often to notice a stop even while no socket is watched.
constexpr std::chrono::milliseconds MAX_POLL_WAIT(50);

// The client's connect() returns at once on loopback, where a real one takes a round trip; so
// its first bytes leave one RTT after the accept, as they would once the handshake was done.
// The server learns of the connection when the handshake's last ACK arrives, half an RTT later,
// and only then can send.
DelayedPipe::Clock::time_point ServerOpensAt(const PathSettings &settings, DelayedPipe::Clock::time_point acceptedAt)
{
    return acceptedAt + settings.rtt + settings.rtt / 2;
}
} // namespace

RelayConnection::RelayConnection(int clientFd, UniqueFd upstream, const PathSettings &settings,
    Clock::time_point acceptedAt)
    : clientFd_(clientFd), upstream_(std::move(upstream)),
      toServer_(settings.rtt / 2, settings.bytesPerSecond, acceptedAt + settings.rtt),
      toClient_(settings.rtt / 2, settings.bytesPerSecond, ServerOpensAt(settings, acceptedAt))
{
}

bool RelayConnection::Read(int from, DelayedPipe &pipe)
{
    char buffer[READ_CHUNK];
    ssize_t received = ::recv(from, buffer, sizeof(buffer), MSG_DONTWAIT);
    if (received < 0) {
        return errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK;
    }
    if (received == 0) {
        pipe.PushEnd(Clock::now());
        return true;
    }
    pipe.Push(buffer, static_cast<size_t>(received), Clock::now());
    return true;
}

short RelayConnection::Events(const DelayedPipe &input, bool outputBlocked)
{
    short events = 0;
    if (input.WantsInput()) {
        events |= POLLIN;
    }
    if (outputBlocked) {
        events |= POLLOUT;
    }
    return events;
}

timespec RelayConnection::PollTimeout(Clock::time_point now) const
{
    Clock::duration wait = MAX_POLL_WAIT;
    // A blocked pipe's chunk is overdue already; its socket's POLLOUT wakes the loop instead.
    const std::pair<const DelayedPipe *, bool> pipes[] = {{&toServer_, serverBlocked_}, {&toClient_, clientBlocked_}};
    for (const auto &[pipe, blocked] : pipes) {
        std::optional<Clock::time_point> due = pipe->NextDue();
        if (due && !blocked) {
            wait = std::min(wait, std::max(*due - now, Clock::duration::zero()));
        }
    }
    // Finer than poll's milliseconds: a delay rounded up at every hop would add up.
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(wait).count();
    constexpr long NANOSECONDS_PER_SECOND = 1000000000L;
    return {static_cast<time_t>(nanoseconds / NANOSECONDS_PER_SECOND),
        static_cast<long>(nanoseconds % NANOSECONDS_PER_SECOND)};
}

void RelayConnection::Run(const std::atomic<bool> &stopping)
{
    const int upstreamFd = upstream_.Get();
    while (!stopping.load(std::memory_order_acquire)) {
        const Clock::time_point now = Clock::now();
        DelayedPipe::Delivery up = toServer_.Deliver(upstreamFd, now);
        DelayedPipe::Delivery down = toClient_.Deliver(clientFd_, now);
        if (up == DelayedPipe::Delivery::FAILED || down == DelayedPipe::Delivery::FAILED) {
            return;
        }
        serverBlocked_ = up == DelayedPipe::Delivery::BLOCKED;
        clientBlocked_ = down == DelayedPipe::Delivery::BLOCKED;
        if (toServer_.Finished() && toClient_.Finished()) {
            return;
        }
        // A socket with nothing to watch stays out of the poll: its hang-up would wake it
        // over and over while data is still on its way.
        const short clientEvents = Events(toServer_, clientBlocked_);
        const short serverEvents = Events(toClient_, serverBlocked_);
        pollfd entries[2] = {{clientEvents != 0 ? clientFd_ : -1, clientEvents, 0},
            {serverEvents != 0 ? upstreamFd : -1, serverEvents, 0}};
        const timespec timeout = PollTimeout(now);
        int ready = ::ppoll(entries, 2, &timeout, nullptr);
        if (ready < 0 && errno != EINTR) {
            return;
        }
        if (ready <= 0) {
            continue;
        }
        if ((entries[0].revents & POLLERR) != 0 || (entries[1].revents & POLLERR) != 0) {
            return;
        }
        if ((entries[0].revents & (POLLIN | POLLHUP)) != 0 && toServer_.WantsInput() && !Read(clientFd_, toServer_)) {
            return;
        }
        if ((entries[1].revents & (POLLIN | POLLHUP)) != 0 && toClient_.WantsInput() && !Read(upstreamFd, toClient_)) {
            return;
        }
    }
}
} // namespace VornTestbed
