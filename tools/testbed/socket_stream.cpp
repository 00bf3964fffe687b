#include "socket_stream.h"

#include <sys/socket.h>

#include <cerrno>
#include <climits>

#include "loopback_socket.h"

namespace VornTestbed {
SocketStream::SocketStream(int fd, SslPtr ssl) : fd_(fd), ssl_(std::move(ssl))
{
    if (ssl_) {
        SSL_set_fd(ssl_.get(), fd_);
    }
}

bool SocketStream::Handshake()
{
    return !ssl_ || SSL_accept(ssl_.get()) == 1;
}

size_t SocketStream::Read(char *buffer, size_t size)
{
    int chunk = static_cast<int>(size > INT_MAX ? INT_MAX : size);
    if (ssl_) {
        int received = SSL_read(ssl_.get(), buffer, chunk);
        return received > 0 ? static_cast<size_t>(received) : 0;
    }
    for (;;) {
        ssize_t received = ::recv(fd_, buffer, static_cast<size_t>(chunk), 0);
        if (received < 0 && errno == EINTR) {
            continue;
        }
        return received > 0 ? static_cast<size_t>(received) : 0;
    }
}

bool SocketStream::WriteAll(const char *data, size_t size)
{
    if (!ssl_) {
        return SendAll(fd_, data, size);
    }
    while (size > 0) {
        int chunk = static_cast<int>(size > INT_MAX ? INT_MAX : size);
        int written = SSL_write(ssl_.get(), data, chunk);
        if (written <= 0) {
            return false;
        }
        data += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

bool SocketStream::WriteAll(const std::string &data)
{
    return WriteAll(data.data(), data.size());
}

bool SocketStream::PeerHasClosed() const
{
    return VornTestbed::PeerHasClosed(fd_);
}

std::string SocketStream::TlsVersion() const
{
    return ssl_ ? SSL_get_version(ssl_.get()) : "";
}

std::string SocketStream::ServerName() const
{
    const char *name = ssl_ ? SSL_get_servername(ssl_.get(), TLSEXT_NAMETYPE_host_name) : nullptr;
    return name != nullptr ? name : "";
}
} // namespace VornTestbed
