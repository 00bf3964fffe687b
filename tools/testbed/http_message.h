#ifndef VORN_TESTBED_HTTP_MESSAGE_H
#define VORN_TESTBED_HTTP_MESSAGE_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VornTestbed {
struct HttpHeader {
    std::string name;
    std::string value;
};

// One request as the server received it.
struct HttpRequest {
    std::string method;
    std::string path;
    std::string query; // without the "?"
    std::vector<HttpHeader> headers; // in the order received
    std::string body;
    std::string tlsVersion; // e.g. "TLSv1.3"; empty over plain HTTP
    std::string serverName; // SNI host name, empty when the client sent none

    // Value of the first header with this name (case-insensitive).
    std::optional<std::string> Header(const std::string &name) const;
};

// Where an answer stalls: it is never completed until the client leaves or the server stops.
enum class Stall { No, BeforeHead, AfterHead };

// What a handler answers, and how the server misbehaves while sending it.
struct HttpResponse {
    int status = 200;
    std::string reason; // empty: the usual phrase of the status
    // Raw "Name: value" lines without CRLF, sent in order; the server adds Content-Length, and
    // Content-Encoding or Connection: close where they apply, after them.
    std::vector<std::string> headerLines;
    std::string body; // any bytes

    // A large body made while sending (generatedBodySize bytes of fillByte) instead of `body`.
    uint64_t generatedBodySize = 0;
    char fillByte = 'x';

    bool gzip = false; // Content-Encoding: gzip, body compressed
    std::chrono::milliseconds delay {0}; // wait before answering
    Stall stall = Stall::No;
    std::chrono::milliseconds trickleInterval {0}; // > 0: one body byte per interval
    std::optional<uint64_t> closeAfterBodyBytes; // announce the full length, close after this many
    std::optional<std::string> rawBytes; // sent verbatim instead of all of the above, then close

    static HttpResponse Text(int status, std::string body);
    // A redirect (301, 302, 307, ...) to a path on the same server or to a full URL.
    static HttpResponse Redirect(int status, const std::string &location);
};

// The usual reason phrase of a status code ("OK", "Not Found", ...), "Unknown" otherwise.
std::string ReasonPhrase(int status);
} // namespace VornTestbed

#endif // VORN_TESTBED_HTTP_MESSAGE_H
