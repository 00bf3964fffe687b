// The test bed's HTTP request reader over arbitrary bytes from a client, as a connection of the
// plain HTTP mode receives them: requests are read one after another until the reader stops.
// Every request it accepts must read back the same when written out again, so that what a test
// asserts about a received request is what the client sent.
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "http_message.h"
#include "request_reader.h"
#include "socket_stream.h"
#include "unique_fd.h"

using VornTestbed::HttpRequest;
using VornTestbed::RequestReader;
using VornTestbed::SocketStream;
using VornTestbed::UniqueFd;

namespace {
// All of an input is written before it is read, so it has to fit the socket's buffer; the
// reader's own limits are far above anything a fuzzer input reaches anyway.
constexpr size_t LARGEST_INPUT = 64 * 1024;
// Pipelined requests are bounded by the input; this only stops a loop that would not end.
constexpr size_t MAX_REQUESTS = LARGEST_INPUT;

void Require(bool condition, const char *what)
{
    if (!condition) {
        std::fprintf(stderr, "testbed_request_reader_fuzzer: %s\n", what);
        std::abort();
    }
}

struct Connection {
    UniqueFd client;
    UniqueFd server;
};

// A connection on which the client has sent `bytes` and then closed its side.
Connection Deliver(const void *bytes, size_t size)
{
    int fds[2];
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) == 0, "socketpair failed");
    Connection connection {UniqueFd(fds[0]), UniqueFd(fds[1])};
    Require(send(connection.client.Get(), bytes, size, MSG_NOSIGNAL) == static_cast<ssize_t>(size), "short write");
    shutdown(connection.client.Get(), SHUT_WR);
    return connection;
}

bool IsTrimmed(const std::string &text)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    return text.empty() || (!blank(text.front()) && !blank(text.back()));
}

void CheckShape(const HttpRequest &request)
{
    Require(!request.method.empty() && !request.path.empty(), "empty method or path accepted");
    Require(request.path.find('?') == std::string::npos, "query left in the path");
    for (const auto &header : request.headers) {
        Require(!header.name.empty() && header.name.find(':') == std::string::npos, "bad header name accepted");
        Require(header.name.find("\r\n") == std::string::npos && header.value.find("\r\n") == std::string::npos,
            "line break inside a header");
        Require(IsTrimmed(header.value), "header value not trimmed");
    }
    const auto length = request.Header("Content-Length");
    Require(request.body.size() == (length ? std::strtoull(length->c_str(), nullptr, 10) : 0),
        "body size differs from Content-Length");
}

std::string Serialise(const HttpRequest &request)
{
    std::string text = request.method + " " + request.path;
    if (!request.query.empty()) {
        text += "?" + request.query;
    }
    text += " HTTP/1.1\r\n";
    for (const auto &header : request.headers) {
        text += header.name + ": " + header.value + "\r\n";
    }
    return text + "\r\n" + request.body;
}

RequestReader::Result ReadOne(const std::string &bytes, HttpRequest &request)
{
    Connection connection = Deliver(bytes.data(), bytes.size());
    SocketStream stream(connection.server.Get(), nullptr);
    RequestReader reader(stream);
    return reader.Next(request);
}

bool SameRequest(const HttpRequest &a, const HttpRequest &b)
{
    if (a.method != b.method || a.path != b.path || a.query != b.query || a.body != b.body ||
        a.headers.size() != b.headers.size()) {
        return false;
    }
    return std::equal(a.headers.begin(), a.headers.end(), b.headers.begin(),
        [](const auto &x, const auto &y) { return x.name == y.name && x.value == y.value; });
}

void CheckRoundTrip(const HttpRequest &request)
{
    HttpRequest again;
    Require(ReadOne(Serialise(request), again) == RequestReader::Result::Ok, "written-out request refused");
    Require(SameRequest(request, again), "written-out request reads back differently");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size > LARGEST_INPUT) {
        return 0;
    }
    Connection connection = Deliver(data, size);
    SocketStream stream(connection.server.Get(), nullptr);
    RequestReader reader(stream);
    for (size_t count = 0; count < MAX_REQUESTS; ++count) {
        HttpRequest request;
        if (reader.Next(request) != RequestReader::Result::Ok) {
            return 0;
        }
        CheckShape(request);
        CheckRoundTrip(request);
    }
    Require(false, "more requests than input bytes");
    return 0;
}
