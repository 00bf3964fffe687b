#include "response_size_guard.h"

namespace OHOS {
namespace Vorn {
namespace {
constexpr size_t SHORT_ESCAPE = 2; // \" \\ \b \f \n \r \t
constexpr size_t UNICODE_ESCAPE = 6; // \u00XX for the other control characters
constexpr unsigned char LAST_CONTROL = 0x1F;

size_t EscapedByteSize(unsigned char byte)
{
    switch (byte) {
        case '"':
        case '\\':
        case '\b':
        case '\f':
        case '\n':
        case '\r':
        case '\t':
            return SHORT_ESCAPE;
        default:
            return byte <= LAST_CONTROL ? UNICODE_ESCAPE : 1;
    }
}
} // namespace

size_t ResponseSizeGuard::EscapedSize(const char *data, size_t length)
{
    size_t size = 0;
    for (size_t i = 0; i < length; ++i) {
        size += EscapedByteSize(static_cast<unsigned char>(data[i]));
    }
    return size;
}

void ResponseSizeGuard::SetLimit(size_t limit)
{
    limit_ = limit;
    used_ = 0;
    exceeded_ = false;
}

bool ResponseSizeGuard::Take(const char *data, size_t length)
{
    if (exceeded_) {
        return false;
    }
    const size_t size = EscapedSize(data, length);
    // Until the limit is passed, used_ <= limit_, so the difference cannot wrap.
    exceeded_ = size > limit_ - used_;
    used_ += size;
    return !exceeded_;
}

bool ResponseSizeGuard::Exceeded() const
{
    return exceeded_;
}

size_t ResponseSizeGuard::Reached() const
{
    return used_;
}
} // namespace Vorn
} // namespace OHOS
