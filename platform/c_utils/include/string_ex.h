#ifndef UTILS_BASE_STRING_EX_H
#define UTILS_BASE_STRING_EX_H

#include <string>

namespace OHOS {
// UTF-8 to UTF-16. Malformed input (bad or overlong sequences, surrogate code points, values
// beyond U+10FFFF) gives an empty string, as on the device.
std::u16string Str8ToStr16(const std::string &str);
} // namespace OHOS

#endif // UTILS_BASE_STRING_EX_H
