#include "tcp_acceptor.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "loopback_socket.h"

namespace VornTestbed {
TcpAcceptor::~TcpAcceptor()
{
    Stop();
}

bool TcpAcceptor::Start(ConnectionHandler handler)
{
    if (acceptThread_.joinable() || stopping_) {
        return false;
    }
    listenFd_ = ListenOnLoopback(port_);
    int pipeFds[2];
    if (!listenFd_.Valid() || ::pipe2(pipeFds, O_CLOEXEC) != 0) {
        std::fprintf(stderr, "testbed: acceptor start failed\n");
        return false;
    }
    wakeReadFd_.Reset(pipeFds[0]);
    wakeWriteFd_.Reset(pipeFds[1]);
    handler_ = std::move(handler);
    acceptThread_ = std::thread([this] { AcceptLoop(); });
    return true;
}

void TcpAcceptor::Stop()
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (stopping_ || !acceptThread_.joinable()) {
            return;
        }
        stopping_ = true;
    }
    char wake = 1;
    (void)::write(wakeWriteFd_.Get(), &wake, 1);
    acceptThread_.join();

    std::list<std::unique_ptr<Connection>> remaining;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        for (auto &connection : connections_) {
            if (connection->fd.Valid()) {
                ::shutdown(connection->fd.Get(), SHUT_RDWR);
            }
        }
        remaining.swap(connections_);
    }
    for (auto &connection : remaining) {
        connection->thread.join();
    }
    listenFd_.Reset();
}

uint16_t TcpAcceptor::Port() const
{
    return port_;
}

void TcpAcceptor::AcceptLoop()
{
    BlockSigpipeInThisThread();
    pollfd entries[2] = {{listenFd_.Get(), POLLIN, 0}, {wakeReadFd_.Get(), POLLIN, 0}};
    for (;;) {
        int ready = ::poll(entries, 2, -1);
        if (ready < 0 && errno != EINTR) {
            std::fprintf(stderr, "testbed: poll failed: %s\n", std::strerror(errno));
            return;
        }
        if (entries[1].revents != 0) {
            return;
        }
        if (ready <= 0 || entries[0].revents == 0) {
            continue;
        }
        UniqueFd client(::accept4(listenFd_.Get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!client.Valid()) {
            continue;
        }
        // Heads and bodies go out in separate writes; Nagle would hold the second one back.
        int noDelay = 1;
        ::setsockopt(client.Get(), IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof(noDelay));
        Launch(std::move(client));
    }
}

void TcpAcceptor::Launch(UniqueFd fd)
{
    std::lock_guard<std::mutex> lock(mutex_);
    JoinFinishedLocked();
    if (stopping_) {
        return;
    }
    auto connection = std::make_unique<Connection>();
    connection->fd = std::move(fd);
    Connection &entry = *connection;
    try {
        entry.thread = std::thread([this, &entry] { Serve(entry); });
    } catch (const std::system_error &error) {
        std::fprintf(stderr, "testbed: no thread for a connection: %s\n", error.what());
        return;
    }
    connections_.push_back(std::move(connection));
}

void TcpAcceptor::Serve(Connection &connection)
{
    // The socket cannot be closed under us: Stop() only shuts it down, and it is closed here
    // under the lock, so a concurrent Stop() never touches a reused descriptor number.
    handler_(connection.fd.Get());
    std::lock_guard<std::mutex> lock(mutex_);
    connection.fd.Reset();
    connection.finished = true;
}

void TcpAcceptor::JoinFinishedLocked()
{
    for (auto it = connections_.begin(); it != connections_.end();) {
        if (!(*it)->finished) {
            ++it;
            continue;
        }
        (*it)->thread.join();
        it = connections_.erase(it);
    }
}
} // namespace VornTestbed
