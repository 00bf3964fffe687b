#ifndef HOST_PLATFORM_HILOG_PRIVACY_FORMATTER_H
#define HOST_PLATFORM_HILOG_PRIVACY_FORMATTER_H

#include <cstdarg>
#include <cstddef>
#include <string>

namespace HostPlatform {
// printf-style formatting that understands the device's "%{public}" and "%{private}" qualifiers.
// A conversion that is private (qualified so, or not qualified at all) prints as "<private>"
// unless private values are revealed; its argument is consumed either way, so the conversions
// after it still read their own arguments.
class PrivacyFormatter {
public:
    PrivacyFormatter(bool revealPrivate, size_t maxBytes);

    // Formats `fmt` with the arguments in `args`; the result never exceeds maxBytes.
    std::string Format(const char *fmt, va_list *args);

private:
    struct Conversion;

    const char *FormatConversion(const char *directive, va_list *args);
    void AppendValue(const Conversion &conv, va_list *args);
    void AppendSigned(const Conversion &conv, va_list *args);
    void AppendUnsigned(const Conversion &conv, va_list *args);
    void AppendFloating(const Conversion &conv, va_list *args);
    template <typename T> void AppendFormatted(const Conversion &conv, T value);
    void AppendText(const char *text, size_t length);
    bool Full() const { return out_.size() >= maxBytes_; }

    bool revealPrivate_;
    size_t maxBytes_;
    std::string out_;
};
} // namespace HostPlatform

#endif // HOST_PLATFORM_HILOG_PRIVACY_FORMATTER_H
