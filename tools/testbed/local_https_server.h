#ifndef VORN_TESTBED_LOCAL_HTTPS_SERVER_H
#define VORN_TESTBED_LOCAL_HTTPS_SERVER_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "certificate_authority.h"
#include "http_message.h"
#include "openssl_handles.h"
#include "stop_signal.h"
#include "tcp_acceptor.h"

namespace VornTestbed {
struct ServerOptions {
    std::string certFile;
    std::string keyFile;
    bool plainHttp = false;
    int minProtocol = TLS1_2_VERSION;
    // 0: the newest the library knows. A maximum below TLS 1.2 lowers the minimum and the
    // security level with it, since the library refuses old protocols otherwise.
    int maxProtocol = 0;
    std::string cipherList; // TLS 1.2 and older; empty keeps the library's default
    // Closes each connection once its first response is sent, without announcing it, as a
    // server does whose idle time-out is shorter than the client's.
    bool closeIdleConnections = false;

    static ServerOptions Tls(const CertificateFiles &files);
    static ServerOptions PlainHttp();
};

// An HTTP/1.1 server on 127.0.0.1 (TLS unless plain HTTP is asked for) for end-to-end tests,
// demos and benchmarks. Each connection is served on its own thread; requests are routed by
// exact path and all of them are recorded. Handlers may be added at any time. A server starts
// once; Stop() (also run by the destructor) ends stalls and waits at once.
class LocalHttpsServer {
public:
    using Handler = std::function<HttpResponse(const HttpRequest &)>;

    explicit LocalHttpsServer(ServerOptions options);
    ~LocalHttpsServer();
    LocalHttpsServer(const LocalHttpsServer &) = delete;
    LocalHttpsServer &operator=(const LocalHttpsServer &) = delete;

    // False (with a message on stderr) when the TLS setup or the socket fails.
    bool Start();
    void Stop();

    uint16_t Port() const;
    std::string BaseUrl() const; // "https://127.0.0.1:<port>" ("http://" in plain mode)
    std::string LocalhostUrl() const; // "https://localhost:<port>"

    void Handle(const std::string &path, Handler handler);
    // Answers every request for `path` with a copy of `response`.
    void Respond(const std::string &path, const HttpResponse &response);

    std::vector<HttpRequest> Requests() const;
    size_t RequestCount() const;
    size_t RequestCount(const std::string &path) const;
    // Waits until at least `count` requests have arrived; false on timeout.
    bool WaitForRequests(size_t count, std::chrono::milliseconds timeout) const;
    void ClearRequests();
    // TCP connections accepted so far, whether or not their handshake succeeded.
    size_t Connections() const;

private:
    bool SetUpTls();
    void ServeConnection(int fd);
    HttpResponse Dispatch(const HttpRequest &request);
    void Record(const HttpRequest &request);
    std::string Url(const std::string &host) const;

    ServerOptions options_;
    SslCtxPtr context_;
    bool started_ = false;
    StopSignal stop_;
    TcpAcceptor acceptor_;

    mutable std::mutex mutex_;
    mutable std::condition_variable requestArrived_;
    std::map<std::string, Handler> handlers_;
    std::vector<HttpRequest> requests_;
    std::map<std::string, size_t> pathCounts_;
    size_t connections_ = 0;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_LOCAL_HTTPS_SERVER_H
