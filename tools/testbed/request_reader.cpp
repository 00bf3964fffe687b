#include "request_reader.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>

namespace VornTestbed {
namespace {
constexpr size_t kMaxHeadBytes = 4 * 1024 * 1024;
constexpr size_t kMaxBodyBytes = 512 * 1024 * 1024;
constexpr size_t kReadChunk = 64 * 1024;

std::string Trim(const std::string &text)
{
    size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string::npos) {
        return "";
    }
    size_t end = text.find_last_not_of(" \t");
    return text.substr(begin, end - begin + 1);
}

bool ParseRequestLine(const std::string &line, HttpRequest &request)
{
    std::istringstream words(line);
    std::string target;
    std::string version;
    if (!(words >> request.method >> target >> version) || version.rfind("HTTP/1.", 0) != 0) {
        return false;
    }
    size_t question = target.find('?');
    request.path = target.substr(0, question);
    request.query = question == std::string::npos ? "" : target.substr(question + 1);
    return !request.path.empty();
}

bool ParseHead(const std::string &head, HttpRequest &request)
{
    size_t lineEnd = head.find("\r\n");
    if (!ParseRequestLine(head.substr(0, lineEnd), request)) {
        return false;
    }
    while (lineEnd != std::string::npos && lineEnd + 2 < head.size()) {
        size_t begin = lineEnd + 2;
        lineEnd = head.find("\r\n", begin);
        std::string line = head.substr(begin, lineEnd == std::string::npos ? std::string::npos : lineEnd - begin);
        size_t colon = line.find(':');
        if (colon == std::string::npos || colon == 0) {
            return false;
        }
        request.headers.push_back({line.substr(0, colon), Trim(line.substr(colon + 1))});
    }
    return true;
}

bool ParseLength(const std::string &text, size_t &length)
{
    char *end = nullptr;
    unsigned long long value = std::strtoull(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || value > kMaxBodyBytes) {
        return false;
    }
    length = static_cast<size_t>(value);
    return true;
}
} // namespace

RequestReader::RequestReader(SocketStream &stream) : stream_(stream) {}

RequestReader::Result RequestReader::Next(HttpRequest &request)
{
    size_t headEnd = 0;
    Result filled = FillUntilHeadEnd(headEnd);
    if (filled != Result::Ok) {
        return filled;
    }
    std::string head = buffer_.substr(0, headEnd);
    buffer_.erase(0, headEnd + 4);
    if (!ParseHead(head, request)) {
        return Result::Malformed;
    }
    if (request.Header("Transfer-Encoding")) {
        return Result::Unsupported;
    }
    size_t length = 0;
    auto contentLength = request.Header("Content-Length");
    if (contentLength && !ParseLength(*contentLength, length)) {
        return Result::Malformed;
    }
    if (request.Header("Expect") == "100-continue" && length > 0 &&
        !stream_.WriteAll("HTTP/1.1 100 Continue\r\n\r\n")) {
        return Result::Closed;
    }
    return ReadExactly(length, request.body) ? Result::Ok : Result::Closed;
}

RequestReader::Result RequestReader::FillUntilHeadEnd(size_t &headEnd)
{
    char chunk[kReadChunk];
    size_t searchFrom = 0;
    for (;;) {
        headEnd = buffer_.find("\r\n\r\n", searchFrom);
        if (headEnd != std::string::npos) {
            return Result::Ok;
        }
        // A request starts with its method; anything else (a TLS ClientHello sent to the plain
        // HTTP mode, say) never ends in a blank line and is answered at once instead of waited on.
        if (!buffer_.empty() && !std::isalpha(static_cast<unsigned char>(buffer_[0]))) {
            return Result::Malformed;
        }
        if (buffer_.size() > kMaxHeadBytes) {
            return Result::TooLarge;
        }
        searchFrom = buffer_.size() < 3 ? 0 : buffer_.size() - 3;
        size_t received = stream_.Read(chunk, sizeof(chunk));
        if (received == 0) {
            return Result::Closed;
        }
        buffer_.append(chunk, received);
    }
}

bool RequestReader::ReadExactly(size_t length, std::string &out)
{
    size_t fromBuffer = std::min(length, buffer_.size());
    out.assign(buffer_, 0, fromBuffer);
    buffer_.erase(0, fromBuffer);
    out.resize(length);
    size_t filled = fromBuffer;
    while (filled < length) {
        size_t received = stream_.Read(&out[filled], length - filled);
        if (received == 0) {
            return false;
        }
        filled += received;
    }
    return true;
}
} // namespace VornTestbed
