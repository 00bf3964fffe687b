#include "local_https_server.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <exception>

#include <openssl/err.h>

#include "request_reader.h"
#include "response_sender.h"
#include "socket_stream.h"

namespace VornTestbed {
namespace {
HttpResponse ErrorFor(RequestReader::Result result)
{
    switch (result) {
        case RequestReader::Result::TooLarge:
            return HttpResponse::Text(431, "request head too large\n");
        case RequestReader::Result::Unsupported:
            return HttpResponse::Text(501, "transfer codings not supported\n");
        default:
            return HttpResponse::Text(400, "malformed request\n");
    }
}

bool WantsClose(const HttpRequest &request)
{
    std::string value = request.Header("Connection").value_or("");
    std::transform(value.begin(), value.end(), value.begin(), [](unsigned char c) { return std::tolower(c); });
    return value.find("close") != std::string::npos;
}
} // namespace

ServerOptions ServerOptions::Tls(const CertificateFiles &files)
{
    ServerOptions options;
    options.certFile = files.certFile;
    options.keyFile = files.keyFile;
    return options;
}

ServerOptions ServerOptions::PlainHttp()
{
    ServerOptions options;
    options.plainHttp = true;
    return options;
}

LocalHttpsServer::LocalHttpsServer(ServerOptions options) : options_(std::move(options)) {}

LocalHttpsServer::~LocalHttpsServer()
{
    Stop();
}

bool LocalHttpsServer::Start()
{
    // Connection threads use the TLS context unlocked, so it is set up exactly once.
    if (started_) {
        return false;
    }
    started_ = true;
    if (!options_.plainHttp && !SetUpTls()) {
        return false;
    }
    return acceptor_.Start([this](int fd) { ServeConnection(fd); });
}

void LocalHttpsServer::Stop()
{
    stop_.Trigger();
    acceptor_.Stop();
}

bool LocalHttpsServer::SetUpTls()
{
    context_.reset(SSL_CTX_new(TLS_server_method()));
    if (!context_) {
        std::fprintf(stderr, "testbed: SSL_CTX_new failed\n");
        return false;
    }
    SSL_CTX *context = context_.get();
    int minProtocol = options_.minProtocol;
    if (options_.maxProtocol != 0 && options_.maxProtocol < TLS1_2_VERSION) {
        // Security level 1 and up forbid the SHA-1 based handshakes of TLS 1.0 and 1.1.
        SSL_CTX_set_security_level(context, 0);
        minProtocol = std::min(minProtocol, options_.maxProtocol);
    }
    bool ready = SSL_CTX_set_min_proto_version(context, minProtocol) == 1 &&
        SSL_CTX_set_max_proto_version(context, options_.maxProtocol) == 1 &&
        (options_.cipherList.empty() || SSL_CTX_set_cipher_list(context, options_.cipherList.c_str()) == 1) &&
        SSL_CTX_use_certificate_chain_file(context, options_.certFile.c_str()) == 1 &&
        SSL_CTX_use_PrivateKey_file(context, options_.keyFile.c_str(), SSL_FILETYPE_PEM) == 1 &&
        SSL_CTX_check_private_key(context) == 1;
    if (!ready) {
        std::fprintf(stderr, "testbed: TLS setup with %s failed\n", options_.certFile.c_str());
        ERR_print_errors_fp(stderr);
        context_.reset();
    }
    return ready;
}

uint16_t LocalHttpsServer::Port() const
{
    return acceptor_.Port();
}

std::string LocalHttpsServer::BaseUrl() const
{
    return Url("127.0.0.1");
}

std::string LocalHttpsServer::LocalhostUrl() const
{
    return Url("localhost");
}

std::string LocalHttpsServer::Url(const std::string &host) const
{
    return (options_.plainHttp ? "http://" : "https://") + host + ":" + std::to_string(Port());
}

void LocalHttpsServer::Handle(const std::string &path, Handler handler)
{
    std::lock_guard<std::mutex> lock(mutex_);
    handlers_[path] = std::move(handler);
}

void LocalHttpsServer::Respond(const std::string &path, const HttpResponse &response)
{
    Handle(path, [response](const HttpRequest &) { return response; });
}

std::vector<HttpRequest> LocalHttpsServer::Requests() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return requests_;
}

size_t LocalHttpsServer::RequestCount() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return requests_.size();
}

size_t LocalHttpsServer::RequestCount(const std::string &path) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    auto found = pathCounts_.find(path);
    return found == pathCounts_.end() ? 0 : found->second;
}

bool LocalHttpsServer::WaitForRequests(size_t count, std::chrono::milliseconds timeout) const
{
    std::unique_lock<std::mutex> lock(mutex_);
    return requestArrived_.wait_for(lock, timeout, [this, count] { return requests_.size() >= count; });
}

void LocalHttpsServer::ClearRequests()
{
    std::lock_guard<std::mutex> lock(mutex_);
    requests_.clear();
    pathCounts_.clear();
}

size_t LocalHttpsServer::Connections() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return connections_;
}

void LocalHttpsServer::ServeConnection(int fd)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        ++connections_;
    }
    SslPtr ssl(context_ ? SSL_new(context_.get()) : nullptr);
    if (context_ && !ssl) {
        return;
    }
    SocketStream stream(fd, std::move(ssl));
    if (!stream.Handshake()) {
        ERR_clear_error();
        return;
    }
    RequestReader reader(stream);
    ResponseSender sender(stream, stop_);
    for (;;) {
        HttpRequest request;
        RequestReader::Result result = reader.Next(request);
        if (result == RequestReader::Result::Closed) {
            break;
        }
        if (result != RequestReader::Result::Ok) {
            sender.Send(ErrorFor(result), false);
            break;
        }
        request.tlsVersion = stream.TlsVersion();
        request.serverName = stream.ServerName();
        Record(request);
        if (!sender.Send(Dispatch(request), !WantsClose(request)) || options_.closeIdleConnections) {
            break;
        }
    }
    // OpenSSL keeps errors per thread; a cut connection must not leave them behind.
    ERR_clear_error();
}

HttpResponse LocalHttpsServer::Dispatch(const HttpRequest &request)
{
    Handler handler;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto found = handlers_.find(request.path);
        if (found == handlers_.end()) {
            return HttpResponse::Text(404, "no handler for " + request.path + "\n");
        }
        handler = found->second;
    }
    try {
        return handler(request);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "testbed: handler for %s threw: %s\n", request.path.c_str(), error.what());
        return HttpResponse::Text(500, "handler failed\n");
    }
}

void LocalHttpsServer::Record(const HttpRequest &request)
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        requests_.push_back(request);
        ++pathCounts_[request.path];
    }
    requestArrived_.notify_all();
}
} // namespace VornTestbed
