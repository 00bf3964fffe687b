#include "gzip_encoder.h"

#include <climits>

namespace VornTestbed {
namespace {
// 15 window bits plus 16 asks zlib for a gzip wrapper instead of a zlib one.
constexpr int kGzipWindowBits = 15 + 16;
constexpr int kMemoryLevel = 8;
constexpr size_t kOutputChunk = 64 * 1024;
} // namespace

GzipEncoder::GzipEncoder()
{
    ready_ = deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindowBits, kMemoryLevel,
                 Z_DEFAULT_STRATEGY) == Z_OK;
}

GzipEncoder::~GzipEncoder()
{
    if (ready_) {
        deflateEnd(&stream_);
    }
}

bool GzipEncoder::Append(std::string_view data)
{
    while (data.size() > UINT_MAX) {
        if (!Deflate(data.substr(0, UINT_MAX), Z_NO_FLUSH)) {
            return false;
        }
        data.remove_prefix(UINT_MAX);
    }
    return Deflate(data, Z_NO_FLUSH);
}

bool GzipEncoder::Finish()
{
    return Deflate({}, Z_FINISH);
}

std::string &GzipEncoder::Output()
{
    return output_;
}

bool GzipEncoder::Deflate(std::string_view data, int flush)
{
    if (!ready_) {
        return false;
    }
    // zlib's interface is not const-correct; it never writes through next_in.
    stream_.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(data.data()));
    stream_.avail_in = static_cast<uInt>(data.size());
    int status = Z_OK;
    do {
        size_t used = output_.size();
        output_.resize(used + kOutputChunk);
        stream_.next_out = reinterpret_cast<Bytef *>(&output_[used]);
        stream_.avail_out = static_cast<uInt>(kOutputChunk);
        status = deflate(&stream_, flush);
        output_.resize(used + kOutputChunk - stream_.avail_out);
        if (status == Z_STREAM_ERROR) {
            return false;
        }
    } while (stream_.avail_out == 0 || (flush == Z_FINISH && status != Z_STREAM_END));
    return true;
}
} // namespace VornTestbed
