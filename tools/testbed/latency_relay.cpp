#include "latency_relay.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cstdio>

#include "loopback_socket.h"

namespace VornTestbed {
LatencyRelay::LatencyRelay(uint16_t upstreamPort, PathSettings settings)
    : upstreamPort_(upstreamPort), settings_(settings)
{
}

LatencyRelay::~LatencyRelay()
{
    Stop();
}

bool LatencyRelay::Start()
{
    return acceptor_.Start([this](int fd) { Relay(fd); });
}

void LatencyRelay::Stop()
{
    // Set first: the acceptor's shutdown wakes each connection, which must then see it.
    stopping_.store(true, std::memory_order_release);
    acceptor_.Stop();
}

uint16_t LatencyRelay::Port() const
{
    return acceptor_.Port();
}

size_t LatencyRelay::Connections() const
{
    return connections_.load(std::memory_order_relaxed);
}

void LatencyRelay::Relay(int clientFd)
{
    const RelayConnection::Clock::time_point acceptedAt = RelayConnection::Clock::now();
    connections_.fetch_add(1, std::memory_order_relaxed);
    UniqueFd upstream = ConnectToLoopback(upstreamPort_);
    if (!upstream.Valid()) {
        std::fprintf(stderr, "testbed: relay cannot reach port %u\n", static_cast<unsigned>(upstreamPort_));
        return;
    }
    // The relay already delays each chunk as it should; Nagle would add delays of its own.
    int noDelay = 1;
    ::setsockopt(upstream.Get(), IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof(noDelay));
    RelayConnection(clientFd, std::move(upstream), settings_, acceptedAt).Run(stopping_);
}
} // namespace VornTestbed
