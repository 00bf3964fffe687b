#ifndef VORN_TESTBED_SOCKET_STREAM_H
#define VORN_TESTBED_SOCKET_STREAM_H

#include <cstddef>
#include <string>

#include "openssl_handles.h"

namespace VornTestbed {
// One accepted connection, read and written either through TLS or as plain bytes. The socket is
// borrowed; the TLS session is owned.
class SocketStream {
public:
    // `ssl` is null for plain HTTP; otherwise it is bound to `fd` here.
    SocketStream(int fd, SslPtr ssl);

    // Runs the server side of the TLS handshake; true at once for plain HTTP.
    bool Handshake();
    // Bytes read into `buffer`, 0 at end of stream or on error.
    size_t Read(char *buffer, size_t size);
    bool WriteAll(const char *data, size_t size);
    bool WriteAll(const std::string &data);
    bool PeerHasClosed() const;

    std::string TlsVersion() const;
    std::string ServerName() const;

private:
    int fd_;
    SslPtr ssl_;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_SOCKET_STREAM_H
