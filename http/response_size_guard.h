#ifndef VORN_HTTP_RESPONSE_SIZE_GUARD_H
#define VORN_HTTP_RESPONSE_SIZE_GUARD_H

#include <cstddef>
#include <cstdint>

namespace OHOS {
namespace Vorn {
// Keeps the texts of a response within what a client's callback can carry. It counts them as
// the response JSON will hold them, escaped, so that a transfer can stop taking bytes as soon as
// the response can no longer fit, rather than after a body of any size has been collected.
class ResponseSizeGuard {
public:
    // The size of `length` bytes as a JSON string's content: quotation marks, backslashes and
    // control characters are escaped; everything else, non-ASCII UTF-8 included, stays raw.
    static size_t EscapedSize(const char *data, size_t length);

    // The bytes the escaped texts may take together; counting restarts.
    void SetLimit(size_t limit);
    // Counts `length` bytes of text. False once they no longer fit; nothing is taken after that.
    bool Take(const char *data, size_t length);
    bool Exceeded() const;
    // The escaped size counted so far, the bytes that did not fit included.
    size_t Reached() const;

private:
    size_t limit_ = SIZE_MAX;
    size_t used_ = 0;
    bool exceeded_ = false;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_HTTP_RESPONSE_SIZE_GUARD_H
