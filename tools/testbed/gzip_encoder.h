#ifndef VORN_TESTBED_GZIP_ENCODER_H
#define VORN_TESTBED_GZIP_ENCODER_H

#include <string>
#include <string_view>

#include <zlib.h>

namespace VornTestbed {
// Compresses data fed in pieces into one gzip member, so a large generated body never has to
// exist uncompressed in memory.
class GzipEncoder {
public:
    GzipEncoder();
    ~GzipEncoder();
    GzipEncoder(const GzipEncoder &) = delete;
    GzipEncoder &operator=(const GzipEncoder &) = delete;

    bool Append(std::string_view data);
    // Completes the stream; the compressed bytes are then in Output().
    bool Finish();
    std::string &Output();

private:
    bool Deflate(std::string_view data, int flush);

    z_stream stream_ {};
    bool ready_ = false;
    std::string output_;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_GZIP_ENCODER_H
