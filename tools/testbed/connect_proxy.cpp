#include "connect_proxy.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>

#include "loopback_socket.h"

namespace VornTestbed {
namespace {
constexpr size_t kMaxHeadBytes = 64 * 1024;
constexpr size_t kRelayChunk = 64 * 1024;
constexpr unsigned long kMaxPort = 65535;

// Reads up to the blank line that ends the proxy request; bytes behind it stay in `rest`.
bool ReadHead(int fd, std::string &head, std::string &rest)
{
    char chunk[4096];
    while (head.find("\r\n\r\n") == std::string::npos) {
        ssize_t received = ::recv(fd, chunk, sizeof(chunk), 0);
        if (received < 0 && errno == EINTR) {
            continue;
        }
        if (received <= 0 || head.size() > kMaxHeadBytes) {
            return false;
        }
        head.append(chunk, static_cast<size_t>(received));
    }
    size_t end = head.find("\r\n\r\n") + 4;
    rest = head.substr(end);
    head.resize(end);
    return true;
}

// Port of "127.0.0.1:<port>" or "localhost:<port>"; 0 for any other target.
uint16_t LoopbackPort(const std::string &target)
{
    size_t colon = target.rfind(':');
    std::string host = target.substr(0, colon);
    if (colon == std::string::npos || (host != "127.0.0.1" && host != "localhost")) {
        return 0;
    }
    char *end = nullptr;
    unsigned long port = std::strtoul(target.c_str() + colon + 1, &end, 10);
    return *end == '\0' && port <= kMaxPort ? static_cast<uint16_t>(port) : 0;
}

bool Forward(int from, int to)
{
    char chunk[kRelayChunk];
    ssize_t received = ::recv(from, chunk, sizeof(chunk), 0);
    if (received < 0 && errno == EINTR) {
        return true;
    }
    return received > 0 && SendAll(to, chunk, static_cast<size_t>(received));
}

// Relays until either side closes. The acceptor shuts the client socket down on Stop(), which
// wakes the poll as an end of stream.
void Relay(int client, int upstream)
{
    pollfd entries[2] = {{client, POLLIN, 0}, {upstream, POLLIN, 0}};
    for (;;) {
        if (::poll(entries, 2, -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            return;
        }
        if ((entries[0].revents != 0 && !Forward(client, upstream)) ||
            (entries[1].revents != 0 && !Forward(upstream, client))) {
            return;
        }
    }
}

void Answer(int fd, const std::string &statusLine)
{
    std::string answer = "HTTP/1.1 " + statusLine + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
    SendAll(fd, answer.data(), answer.size());
}
} // namespace

ConnectProxy::~ConnectProxy()
{
    Stop();
}

bool ConnectProxy::Start()
{
    return acceptor_.Start([this](int fd) { ServeConnection(fd); });
}

void ConnectProxy::Stop()
{
    acceptor_.Stop();
}

uint16_t ConnectProxy::Port() const
{
    return acceptor_.Port();
}

std::string ConnectProxy::Url() const
{
    return "http://127.0.0.1:" + std::to_string(Port());
}

std::vector<std::string> ConnectProxy::Targets() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return targets_;
}

void ConnectProxy::Record(const std::string &target)
{
    std::lock_guard<std::mutex> lock(mutex_);
    targets_.push_back(target);
}

void ConnectProxy::ServeConnection(int clientFd)
{
    std::string head;
    std::string rest;
    if (!ReadHead(clientFd, head, rest)) {
        return;
    }
    std::istringstream requestLine(head.substr(0, head.find("\r\n")));
    std::string method;
    std::string target;
    requestLine >> method >> target;
    if (method != "CONNECT") {
        Answer(clientFd, "405 Method Not Allowed");
        return;
    }
    Record(target);
    uint16_t port = LoopbackPort(target);
    if (port == 0) {
        Answer(clientFd, "403 Forbidden");
        return;
    }
    UniqueFd upstream = ConnectToLoopback(port);
    if (!upstream.Valid()) {
        Answer(clientFd, "502 Bad Gateway");
        return;
    }
    const std::string established = "HTTP/1.1 200 Connection established\r\n\r\n";
    if (!SendAll(clientFd, established.data(), established.size()) ||
        !SendAll(upstream.Get(), rest.data(), rest.size())) {
        return;
    }
    Relay(clientFd, upstream.Get());
}
} // namespace VornTestbed
