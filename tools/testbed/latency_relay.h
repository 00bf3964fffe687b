#ifndef VORN_TESTBED_LATENCY_RELAY_H
#define VORN_TESTBED_LATENCY_RELAY_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

#include "relay_connection.h"
#include "tcp_acceptor.h"

namespace VornTestbed {
// A TCP relay on 127.0.0.1 in front of a local server that makes the path between them behave
// like a network with a given round-trip time and, optionally, a bandwidth. It is transparent:
// bytes pass unchanged, so TLS to the server still verifies (clients keep naming 127.0.0.1 or
// localhost; only the port differs).
//
// The model, with RTT the round-trip time and t0 the moment the relay accepts a connection:
// - Set-up: on loopback connect() returns at once, where on a network it returns one RTT later.
//   So the client's bytes leave no earlier than t0 + RTT, and the server's no earlier than
//   t0 + 1.5 RTT (when the handshake's last ACK would have reached it). The upstream connection
//   is opened at t0, so a refused one closes the client's at once.
//   A request sent right after connect() is thus answered after 2 RTT, one for the handshake.
// - Each direction delays every byte by RTT/2 and keeps the order.
// - With a bandwidth B, a direction sends one chunk at a time, a chunk of s bytes taking s/B, and
//   delivers it whole when sent (chunks are at most 16 KiB); the delay comes on top.
// - An end of stream (a shutdown or close) travels like data and shuts the other socket's
//   sending side when it arrives; the relay lets a connection go once both ends have arrived.
//   A failed socket (a reset) ends both sides at once, without delay.
// Each connection is relayed on a thread of its own; Stop() ends them all and waits for them.
class LatencyRelay {
public:
    LatencyRelay(uint16_t upstreamPort, PathSettings settings);
    ~LatencyRelay();
    LatencyRelay(const LatencyRelay &) = delete;
    LatencyRelay &operator=(const LatencyRelay &) = delete;

    // False (with a message on stderr) when it cannot listen.
    bool Start();
    void Stop();

    uint16_t Port() const;
    // Connections accepted so far.
    size_t Connections() const;

private:
    void Relay(int clientFd);

    uint16_t upstreamPort_;
    PathSettings settings_;
    std::atomic<bool> stopping_ {false};
    std::atomic<size_t> connections_ {0};
    TcpAcceptor acceptor_;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_LATENCY_RELAY_H
