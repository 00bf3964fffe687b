#ifndef VORN_TESTBED_TCP_ACCEPTOR_H
#define VORN_TESTBED_TCP_ACCEPTOR_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

#include "unique_fd.h"

namespace VornTestbed {
// Accepts connections on 127.0.0.1 and serves each on its own thread, so that one stalled
// connection never holds up another. Stop() unblocks every connection by shutting its socket
// down and joins all threads; handlers must return once their socket fails.
class TcpAcceptor {
public:
    // Serves one connection; the socket stays owned by the acceptor.
    using ConnectionHandler = std::function<void(int fd)>;

    TcpAcceptor() = default;
    ~TcpAcceptor();
    TcpAcceptor(const TcpAcceptor &) = delete;
    TcpAcceptor &operator=(const TcpAcceptor &) = delete;

    // Binds an ephemeral port and starts accepting; false (with a message on stderr) on failure.
    bool Start(ConnectionHandler handler);
    void Stop();
    uint16_t Port() const;

private:
    struct Connection {
        UniqueFd fd;
        std::thread thread;
        bool finished = false;
    };

    void AcceptLoop();
    void Launch(UniqueFd fd);
    void Serve(Connection &connection);
    void JoinFinishedLocked();

    ConnectionHandler handler_;
    UniqueFd listenFd_;
    UniqueFd wakeReadFd_;
    UniqueFd wakeWriteFd_;
    uint16_t port_ = 0;
    std::thread acceptThread_;
    std::mutex mutex_;
    std::list<std::unique_ptr<Connection>> connections_;
    bool stopping_ = false;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_TCP_ACCEPTOR_H
