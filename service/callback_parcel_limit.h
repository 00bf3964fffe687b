#ifndef VORN_SERVICE_CALLBACK_PARCEL_LIMIT_H
#define VORN_SERVICE_CALLBACK_PARCEL_LIMIT_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "i_vorn_request_callback.h"
#include "parcel.h"

namespace OHOS {
namespace Vorn {
namespace CallbackParcelLimit {
// Parcels write every value in whole 4-byte words.
constexpr size_t WORD = sizeof(int32_t);

constexpr size_t Padded(size_t bytes)
{
    return (bytes + WORD - 1) / WORD * WORD;
}

// The interface token opens every OnResponse parcel: the strict-mode policy and the work source
// (one word each), then the descriptor as a UTF-16 string: its length word and its 30 units plus
// a terminator, padded: 4 + 4 + 4 + 64 = 76 bytes.
constexpr size_t TOKEN_SIZE = 3 * WORD +
    Padded((std::char_traits<char16_t>::length(IVornRequestCallback::metaDescriptor_) + 1) * sizeof(char16_t));

// The response follows as a string: its length word, then its bytes plus a terminator, padded.
// The largest response n with 4 + Padded(n + 1) <= 204800 - 76 is 204719 bytes: a longer one
// makes the write fail, and the client would get nothing.
constexpr size_t MAX_RESPONSE_SIZE = (DEFAULT_CPACITY - TOKEN_SIZE - WORD) / WORD * WORD - 1;
static_assert(TOKEN_SIZE == 76, "the callback's interface token takes 76 bytes");
static_assert(MAX_RESPONSE_SIZE == 204719, "a response fills the 200 KiB parcel after the token");
} // namespace CallbackParcelLimit
} // namespace Vorn
} // namespace OHOS

#endif // VORN_SERVICE_CALLBACK_PARCEL_LIMIT_H
