#include "response_sender.h"

#include <algorithm>
#include <cstdio>

#include "gzip_encoder.h"

namespace VornTestbed {
namespace {
constexpr size_t kSendChunk = 64 * 1024;
constexpr std::chrono::milliseconds kStallPollInterval {20};
} // namespace

uint64_t ResponseSender::WireBody::Size() const
{
    return generated ? generatedSize : bytes.size();
}

ResponseSender::ResponseSender(SocketStream &stream, const StopSignal &stop) : stream_(stream), stop_(stop) {}

bool ResponseSender::Send(const HttpResponse &response, bool keepAlive)
{
    if (response.delay.count() > 0 && !stop_.SleepFor(response.delay)) {
        return false;
    }
    if (response.rawBytes) {
        stream_.WriteAll(*response.rawBytes);
        return false;
    }
    if (response.stall == Stall::BeforeHead) {
        StallUntilDone();
        return false;
    }
    WireBody body;
    if (!PrepareBody(response, body)) {
        return false;
    }
    uint64_t count = std::min(body.Size(), response.closeAfterBodyBytes.value_or(body.Size()));
    bool whole = count == body.Size();
    keepAlive = keepAlive && whole && response.stall == Stall::No;
    std::string head = Head(response, body.Size(), keepAlive);
    // A small answer leaves in one TLS record, as a production server sends it: a head and a
    // body written apart would wake the client twice for one response.
    if (response.stall == Stall::No && response.trickleInterval.count() == 0 && !body.generated &&
        count <= kSendChunk) {
        head.append(body.bytes, 0, static_cast<size_t>(count));
        return stream_.WriteAll(head) && keepAlive;
    }
    if (!stream_.WriteAll(head)) {
        return false;
    }
    if (response.stall == Stall::AfterHead) {
        StallUntilDone();
        return false;
    }
    bool sent = response.trickleInterval.count() > 0 ? TrickleBody(body, count, response.trickleInterval)
                                                     : SendBody(body, count);
    return sent && keepAlive;
}

bool ResponseSender::PrepareBody(const HttpResponse &response, WireBody &body) const
{
    if (!response.gzip) {
        body.bytes = response.body;
        body.generated = response.generatedBodySize > 0;
        body.generatedSize = response.generatedBodySize;
        body.fillByte = response.fillByte;
        return true;
    }
    GzipEncoder encoder;
    if (response.generatedBodySize == 0) {
        encoder.Append(response.body);
    } else {
        std::string chunk(kSendChunk, response.fillByte);
        for (uint64_t left = response.generatedBodySize; left > 0;) {
            size_t piece = static_cast<size_t>(std::min<uint64_t>(left, chunk.size()));
            encoder.Append(std::string_view(chunk.data(), piece));
            left -= piece;
        }
    }
    if (!encoder.Finish()) {
        std::fprintf(stderr, "testbed: gzip compression failed\n");
        return false;
    }
    body.compressed = std::move(encoder.Output());
    body.bytes = body.compressed;
    return true;
}

std::string ResponseSender::Head(const HttpResponse &response, uint64_t contentLength, bool keepAlive) const
{
    std::string head = "HTTP/1.1 " + std::to_string(response.status) + " " +
        (response.reason.empty() ? ReasonPhrase(response.status) : response.reason) + "\r\n";
    for (const auto &line : response.headerLines) {
        head += line;
        head += "\r\n";
    }
    head += "Content-Length: " + std::to_string(contentLength) + "\r\n";
    if (response.gzip) {
        head += "Content-Encoding: gzip\r\n";
    }
    if (!keepAlive) {
        head += "Connection: close\r\n";
    }
    head += "\r\n";
    return head;
}

bool ResponseSender::SendBody(const WireBody &body, uint64_t count)
{
    if (!body.generated) {
        return stream_.WriteAll(body.bytes.data(), static_cast<size_t>(count));
    }
    std::string chunk(static_cast<size_t>(std::min<uint64_t>(count, kSendChunk)), body.fillByte);
    for (uint64_t left = count; left > 0;) {
        size_t piece = static_cast<size_t>(std::min<uint64_t>(left, chunk.size()));
        if (stop_.Triggered() || !stream_.WriteAll(chunk.data(), piece)) {
            return false;
        }
        left -= piece;
    }
    return true;
}

bool ResponseSender::TrickleBody(const WireBody &body, uint64_t count, std::chrono::milliseconds interval)
{
    for (uint64_t offset = 0; offset < count; ++offset) {
        if (offset > 0 && !stop_.SleepFor(interval)) {
            return false;
        }
        char byte = body.generated ? body.fillByte : body.bytes[offset];
        if (!stream_.WriteAll(&byte, 1)) {
            return false;
        }
    }
    return true;
}

void ResponseSender::StallUntilDone()
{
    while (stop_.SleepFor(kStallPollInterval)) {
        if (stream_.PeerHasClosed()) {
            return;
        }
    }
}
} // namespace VornTestbed
