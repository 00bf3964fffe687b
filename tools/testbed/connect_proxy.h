#ifndef VORN_TESTBED_CONNECT_PROXY_H
#define VORN_TESTBED_CONNECT_PROXY_H

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "tcp_acceptor.h"

namespace VornTestbed {
// An HTTP proxy on 127.0.0.1 that only tunnels: it answers "CONNECT host:port" with
// "HTTP/1.1 200 Connection established" and relays bytes both ways until one side closes.
// Targets other than 127.0.0.1 and localhost are refused (403), so nothing leaves the host.
class ConnectProxy {
public:
    ConnectProxy() = default;
    ~ConnectProxy();
    ConnectProxy(const ConnectProxy &) = delete;
    ConnectProxy &operator=(const ConnectProxy &) = delete;

    bool Start();
    // Closes every tunnel and waits for them.
    void Stop();

    uint16_t Port() const;
    std::string Url() const; // "http://127.0.0.1:<port>"
    // Every "host:port" asked for with CONNECT, in order, refused ones included.
    std::vector<std::string> Targets() const;

private:
    void ServeConnection(int clientFd);
    void Record(const std::string &target);

    TcpAcceptor acceptor_;
    mutable std::mutex mutex_;
    std::vector<std::string> targets_;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_CONNECT_PROXY_H
