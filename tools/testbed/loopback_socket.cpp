#include "loopback_socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace VornTestbed {
namespace {
sockaddr_in LoopbackAddress(uint16_t port)
{
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}
} // namespace

UniqueFd ListenOnLoopback(uint16_t &port)
{
    UniqueFd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!fd.Valid()) {
        std::fprintf(stderr, "testbed: socket failed: %s\n", std::strerror(errno));
        return {};
    }
    int reuse = 1;
    ::setsockopt(fd.Get(), SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse));
    sockaddr_in address = LoopbackAddress(0);
    if (::bind(fd.Get(), reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0 ||
        ::listen(fd.Get(), SOMAXCONN) != 0) {
        std::fprintf(stderr, "testbed: bind/listen failed: %s\n", std::strerror(errno));
        return {};
    }
    socklen_t length = sizeof(address);
    if (::getsockname(fd.Get(), reinterpret_cast<sockaddr *>(&address), &length) != 0) {
        std::fprintf(stderr, "testbed: getsockname failed: %s\n", std::strerror(errno));
        return {};
    }
    port = ntohs(address.sin_port);
    return fd;
}

UniqueFd ConnectToLoopback(uint16_t port)
{
    UniqueFd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!fd.Valid()) {
        return {};
    }
    sockaddr_in address = LoopbackAddress(port);
    if (::connect(fd.Get(), reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0) {
        return {};
    }
    return fd;
}

bool SendAll(int fd, const char *data, size_t size)
{
    while (size > 0) {
        ssize_t sent = ::send(fd, data, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent <= 0) {
            return false;
        }
        data += sent;
        size -= static_cast<size_t>(sent);
    }
    return true;
}

bool PeerHasClosed(int fd)
{
    pollfd entry {fd, POLLRDHUP, 0};
    int ready = ::poll(&entry, 1, 0);
    if (ready <= 0) {
        return ready < 0 && errno != EINTR;
    }
    return (entry.revents & (POLLRDHUP | POLLHUP | POLLERR | POLLNVAL)) != 0;
}

void BlockSigpipeInThisThread()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}
} // namespace VornTestbed
