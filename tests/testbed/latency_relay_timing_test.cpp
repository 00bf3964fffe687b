#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "latency_relay.h"
#include "loopback_socket.h"
#include "tcp_acceptor.h"

namespace VornTestbed {
namespace {
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr double TOLERANCE = 0.10;
constexpr double THREAD_START_ALLOWANCE_MS = 25;

double MillisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Reads exactly `size` bytes; shorter when the stream ended or the read timed out.
std::string ReadExactly(int fd, size_t size)
{
    std::string data(size, '\0');
    size_t have = 0;
    while (have < size) {
        ssize_t received = ::recv(fd, &data[have], size - have, 0);
        if (received <= 0) {
            break;
        }
        have += static_cast<size_t>(received);
    }
    data.resize(have);
    return data;
}

// True when the peer's end of stream is the next thing to read.
bool ReadsEnd(int fd)
{
    char byte = 0;
    return ::recv(fd, &byte, 1, 0) == 0;
}

// True when the connection is over: an end of stream or a reset, not a read timing out.
bool ReadsClosed(int fd)
{
    char byte = 0;
    ssize_t received = ::recv(fd, &byte, 1, 0);
    return received == 0 || (received < 0 && errno != EAGAIN && errno != EWOULDBLOCK);
}

// Servers behind the relay: one echoes every byte until the client's end of stream, then closes;
// the other waits for one byte, sends a block of a given size and closes.
class LatencyRelayTest : public ::testing::Test {
protected:
    void StartEcho()
    {
        ASSERT_TRUE(upstream_.Start([](int fd) {
            char buffer[4096];
            for (ssize_t received; (received = ::recv(fd, buffer, sizeof(buffer), 0)) > 0;) {
                if (!SendAll(fd, buffer, static_cast<size_t>(received))) {
                    return;
                }
            }
        }));
    }

    void StartSource(size_t size)
    {
        ASSERT_TRUE(upstream_.Start([size](int fd) {
            char go = 0;
            if (::recv(fd, &go, 1, 0) != 1) {
                return;
            }
            std::string block(size, 'x');
            SendAll(fd, block.data(), block.size());
        }));
    }

    void StartRelay(std::chrono::milliseconds rtt, size_t bytesPerSecond = 0)
    {
        relay_ = std::make_unique<LatencyRelay>(upstream_.Port(), PathSettings {rtt, bytesPerSecond});
        ASSERT_TRUE(relay_->Start());
    }

    // A client of the relay whose reads give up after a while, so a fault fails the test instead
    // of hanging it.
    UniqueFd Connect() const
    {
        UniqueFd fd = ConnectToLoopback(relay_->Port());
        EXPECT_TRUE(fd.Valid());
        timeval limit {10, 0};
        ::setsockopt(fd.Get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
        return fd;
    }

    // One byte out and back on an open connection.
    static double RoundTripMs(int fd)
    {
        const Clock::time_point start = Clock::now();
        EXPECT_TRUE(SendAll(fd, "p", 1));
        EXPECT_EQ(ReadExactly(fd, 1), "p");
        return MillisecondsSince(start);
    }

    TcpAcceptor upstream_;
    std::unique_ptr<LatencyRelay> relay_;
};

class LatencyRelayRttTest : public LatencyRelayTest, public ::testing::WithParamInterface<int> {};

TEST_P(LatencyRelayRttTest, RoundTripTakesOneRttAndConnectingOneMore)
{
    const double rtt = GetParam();
    StartEcho();
    StartRelay(std::chrono::milliseconds(GetParam()));

    const Clock::time_point connectStart = Clock::now();
    UniqueFd client = Connect();
    RoundTripMs(client.Get());
    const double firstExchange = MillisecondsSince(connectStart);

    std::vector<double> trips;
    for (int i = 0; i < 5; ++i) {
        trips.push_back(RoundTripMs(client.Get()));
    }
    // A busy machine only ever adds time to a trip, so the fastest one measures the relay's delay.
    const double fastest = *std::min_element(trips.begin(), trips.end());
    EXPECT_NEAR(fastest, rtt, rtt * TOLERANCE);
    // The handshake adds one round trip. A new connection also starts a thread in the relay and
    // one in the server, which on a busy machine takes milliseconds: only the upper bound allows
    // for that.
    const double handshake = firstExchange - fastest;
    EXPECT_GE(handshake, rtt * (1 - TOLERANCE));
    EXPECT_LE(handshake, rtt * (1 + TOLERANCE) + THREAD_START_ALLOWANCE_MS);
    EXPECT_EQ(relay_->Connections(), 1U);
}

INSTANTIATE_TEST_SUITE_P(PhoneRtts, LatencyRelayRttTest, ::testing::Values(50, 150));

// Half-closed: the echo server still answers every byte that came before the end, then closes.
TEST_F(LatencyRelayTest, ManySmallWritesArriveInOrderAndTheEndOfStreamTravelsBothWays)
{
    StartEcho();
    StartRelay(20ms);
    UniqueFd client = Connect();
    constexpr uint32_t count = 5000;
    std::string expected;
    for (uint32_t i = 0; i < count; ++i) {
        char bytes[sizeof(i)];
        std::memcpy(bytes, &i, sizeof(i));
        ASSERT_TRUE(SendAll(client.Get(), bytes, sizeof(bytes)));
        expected.append(bytes, sizeof(bytes));
    }
    ASSERT_EQ(::shutdown(client.Get(), SHUT_WR), 0);
    EXPECT_TRUE(ReadExactly(client.Get(), expected.size()) == expected) << "bytes lost or reordered";
    EXPECT_TRUE(ReadsEnd(client.Get()));
}

TEST_F(LatencyRelayTest, BandwidthLimitHolds)
{
    constexpr size_t size = 1024 * 1024;
    constexpr size_t bytesPerSecond = 1024 * 1024;
    constexpr double rtt = 20;
    StartSource(size);
    StartRelay(std::chrono::milliseconds(static_cast<int>(rtt)), bytesPerSecond);

    const Clock::time_point start = Clock::now();
    UniqueFd client = Connect();
    ASSERT_TRUE(SendAll(client.Get(), "g", 1));
    ASSERT_EQ(ReadExactly(client.Get(), size).size(), size);
    const double expected = 2 * rtt + 1000.0 * size / bytesPerSecond;
    EXPECT_NEAR(MillisecondsSince(start), expected, expected * TOLERANCE);
    EXPECT_TRUE(ReadsEnd(client.Get())) << "the server's close reaches the client";
}

TEST_F(LatencyRelayTest, ReaderThatFallsBehindLosesNothing)
{
    // More than the sockets buffer: the relay must wait for the reader, not drop or spin.
    constexpr size_t size = 8 * 1024 * 1024;
    StartSource(size);
    StartRelay(10ms);
    UniqueFd client = Connect();
    ASSERT_TRUE(SendAll(client.Get(), "g", 1));
    EXPECT_TRUE(ReadExactly(client.Get(), size) == std::string(size, 'x'));
    EXPECT_TRUE(ReadsEnd(client.Get()));
}

TEST_F(LatencyRelayTest, UnreachableUpstreamClosesTheClient)
{
    ASSERT_TRUE(upstream_.Start([](int) {}));
    const uint16_t closedPort = upstream_.Port();
    upstream_.Stop();
    relay_ = std::make_unique<LatencyRelay>(closedPort, PathSettings {50ms, 0});
    ASSERT_TRUE(relay_->Start());
    UniqueFd client = Connect();
    EXPECT_TRUE(ReadsEnd(client.Get()));
}

TEST_F(LatencyRelayTest, StopEndsConnectionsWithDataInFlight)
{
    StartEcho();
    StartRelay(2000ms);
    UniqueFd client = Connect();
    ASSERT_TRUE(SendAll(client.Get(), "held", 4));
    // The relay counts a connection once its thread carries it.
    const Clock::time_point deadline = Clock::now() + 5s;
    while (relay_->Connections() == 0 && Clock::now() < deadline) {
        std::this_thread::yield();
    }
    ASSERT_EQ(relay_->Connections(), 1U);
    const Clock::time_point start = Clock::now();
    relay_->Stop();
    EXPECT_LT(MillisecondsSince(start), 1000.0);
    EXPECT_TRUE(ReadsClosed(client.Get())) << "the held bytes are dropped, the client's socket closed";
}
} // namespace
} // namespace VornTestbed
