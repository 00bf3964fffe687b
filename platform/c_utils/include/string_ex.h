#ifndef UTILS_BASE_STRING_EX_H
#define UTILS_BASE_STRING_EX_H

#include <string>

namespace OHOS {
// UTF-8 to UTF-16. Malformed input (bad or overlong sequences, surrogate code points, values
// beyond U+10FFFF) gives an empty string, as on the device.
std::u16string Str8ToStr16(const std::string &str);

// UTF-16 to UTF-8. An unpaired surrogate gives an empty string.
std::string Str16ToStr8(const std::u16string &str16);
} // namespace OHOS

#endif // UTILS_BASE_STRING_EX_H
