#ifndef VORN_TESTBED_LOOPBACK_SOCKET_H
#define VORN_TESTBED_LOOPBACK_SOCKET_H

#include <cstddef>
#include <cstdint>

#include "unique_fd.h"

namespace VornTestbed {
// Listens on 127.0.0.1 with a port the kernel picks; stores it in `port`. Invalid on failure.
UniqueFd ListenOnLoopback(uint16_t &port);

// Connects to 127.0.0.1:port. Invalid on failure.
UniqueFd ConnectToLoopback(uint16_t port);

// Sends every byte, retrying short writes; false once the peer is gone.
bool SendAll(int fd, const char *data, size_t size);

// True once the peer has shut down its side (or the socket failed), without consuming data.
bool PeerHasClosed(int fd);

// A client that goes away while a thread writes must not kill the process with SIGPIPE. Threads
// inherit the mask, so blocking it in an accept thread covers every connection thread it starts.
void BlockSigpipeInThisThread();
} // namespace VornTestbed

#endif // VORN_TESTBED_LOOPBACK_SOCKET_H
