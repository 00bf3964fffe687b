#ifndef VORN_TESTBED_REQUEST_READER_H
#define VORN_TESTBED_REQUEST_READER_H

#include <cstddef>
#include <string>

#include "http_message.h"
#include "socket_stream.h"

namespace VornTestbed {
// Reads HTTP/1.1 requests one after another from a connection; bytes behind one request are
// kept for the next, so pipelined requests are not lost.
class RequestReader {
public:
    enum class Result { Ok, Closed, Malformed, TooLarge, Unsupported };

    explicit RequestReader(SocketStream &stream);
    Result Next(HttpRequest &request);

private:
    Result FillUntilHeadEnd(size_t &headEnd);
    bool ReadExactly(size_t length, std::string &out);

    SocketStream &stream_;
    std::string buffer_;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_REQUEST_READER_H
