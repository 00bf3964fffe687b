#ifndef VORN_TESTBED_RESPONSE_SENDER_H
#define VORN_TESTBED_RESPONSE_SENDER_H

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "http_message.h"
#include "socket_stream.h"
#include "stop_signal.h"

namespace VornTestbed {
// Writes one response with all its misbehaviours (delay, stall, trickle, cut body, gzip,
// generated body) to a connection. Every wait ends early when the server stops.
class ResponseSender {
public:
    ResponseSender(SocketStream &stream, const StopSignal &stop);

    // True when the response went out whole and the connection may serve another request.
    bool Send(const HttpResponse &response, bool keepAlive);

private:
    // The bytes after the head: held (maybe compressed) or generated while sending.
    struct WireBody {
        std::string compressed;
        std::string_view bytes;
        uint64_t generatedSize = 0;
        char fillByte = 0;
        bool generated = false;

        uint64_t Size() const;
    };

    bool PrepareBody(const HttpResponse &response, WireBody &body) const;
    std::string Head(const HttpResponse &response, uint64_t contentLength, bool keepAlive) const;
    bool SendBody(const WireBody &body, uint64_t count);
    bool TrickleBody(const WireBody &body, uint64_t count, std::chrono::milliseconds interval);
    // Holds the connection until the client leaves or the server stops.
    void StallUntilDone();

    SocketStream &stream_;
    const StopSignal &stop_;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_RESPONSE_SENDER_H
