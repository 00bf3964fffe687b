#include "privacy_formatter.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <type_traits>

namespace HostPlatform {
namespace {
constexpr char PUBLIC_QUALIFIER[] = "{public}";
constexpr char PRIVATE_QUALIFIER[] = "{private}";
constexpr char PRIVATE_TEXT[] = "<private>";
constexpr char FLAG_CHARS[] = "-+ #0'";
constexpr char CONVERSION_CHARS[] = "diuoxXcspfFeEgGaA%";
constexpr size_t SHORT_FIELD_BYTES = 128;

enum class Length { NONE, CHAR, SHORT, LONG, LONG_LONG, SIZE, INTMAX, PTRDIFF, LONG_DOUBLE };

bool StartsWith(const char *text, const char *prefix)
{
    return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

bool IsDigit(char c)
{
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// Reads a length modifier at `p` into `length`; returns the number of characters it spans.
size_t ParseLength(const char *p, Length &length)
{
    switch (*p) {
        case 'h':
            length = p[1] == 'h' ? Length::CHAR : Length::SHORT;
            return length == Length::CHAR ? 2 : 1;
        case 'l':
            length = p[1] == 'l' ? Length::LONG_LONG : Length::LONG;
            return length == Length::LONG_LONG ? 2 : 1;
        case 'z':
            length = Length::SIZE;
            return 1;
        case 'j':
            length = Length::INTMAX;
            return 1;
        case 't':
            length = Length::PTRDIFF;
            return 1;
        case 'L':
            length = Length::LONG_DOUBLE;
            return 1;
        default:
            length = Length::NONE;
            return 0;
    }
}
} // namespace

struct PrivacyFormatter::Conversion {
    bool isPublic = false;
    std::string directive; // the conversion rebuilt for snprintf, with '*' replaced by the values read
    Length length = Length::NONE;
    char type = '\0';
};

PrivacyFormatter::PrivacyFormatter(bool revealPrivate, size_t maxBytes)
    : revealPrivate_(revealPrivate), maxBytes_(maxBytes)
{
}

std::string PrivacyFormatter::Format(const char *fmt, va_list *args)
{
    out_.clear();
    const char *p = fmt;
    while (*p != '\0' && !Full()) {
        const char *percent = std::strchr(p, '%');
        if (percent == nullptr) {
            AppendText(p, std::strlen(p));
            break;
        }
        AppendText(p, static_cast<size_t>(percent - p));
        p = FormatConversion(percent, args);
    }
    return out_;
}

// Formats the conversion starting at the '%' in `directive`; returns where the plain text resumes.
const char *PrivacyFormatter::FormatConversion(const char *directive, va_list *args)
{
    Conversion conv;
    const char *p = directive + 1;
    if (StartsWith(p, PUBLIC_QUALIFIER)) {
        conv.isPublic = true;
        p += std::strlen(PUBLIC_QUALIFIER);
    } else if (StartsWith(p, PRIVATE_QUALIFIER)) {
        p += std::strlen(PRIVATE_QUALIFIER);
    }
    conv.directive = "%";
    while (*p != '\0' && std::strchr(FLAG_CHARS, *p) != nullptr) {
        conv.directive += *p++;
    }
    if (*p == '*') {
        conv.directive += std::to_string(va_arg(*args, int));
        ++p;
    }
    while (IsDigit(*p)) {
        conv.directive += *p++;
    }
    if (*p == '.') {
        ++p;
        if (*p == '*') {
            int precision = va_arg(*args, int);
            ++p;
            // A negative precision read through '*' counts as if none had been given.
            if (precision >= 0) {
                conv.directive += "." + std::to_string(precision);
            }
        } else {
            conv.directive += '.';
            while (IsDigit(*p)) {
                conv.directive += *p++;
            }
        }
    }
    size_t lengthChars = ParseLength(p, conv.length);
    conv.directive.append(p, lengthChars);
    p += lengthChars;

    // Anything that is not a conversion is kept as written and consumes no argument.
    if (*p == '\0' || std::strchr(CONVERSION_CHARS, *p) == nullptr) {
        AppendText(directive, static_cast<size_t>(p - directive));
        return p;
    }
    conv.type = *p;
    conv.directive += *p;
    AppendValue(conv, args);
    return p + 1;
}

void PrivacyFormatter::AppendValue(const Conversion &conv, va_list *args)
{
    switch (conv.type) {
        case '%':
            AppendText("%", 1);
            return;
        case 'd':
        case 'i':
            AppendSigned(conv, args);
            return;
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            AppendUnsigned(conv, args);
            return;
        case 'c':
            if (conv.length == Length::LONG) {
                AppendFormatted(conv, va_arg(*args, wint_t));
            } else {
                AppendFormatted(conv, va_arg(*args, int));
            }
            return;
        case 's':
            if (conv.length == Length::LONG) {
                AppendFormatted(conv, va_arg(*args, const wchar_t *));
            } else {
                AppendFormatted(conv, va_arg(*args, const char *));
            }
            return;
        case 'p':
            AppendFormatted(conv, va_arg(*args, void *));
            return;
        default:
            AppendFloating(conv, args);
            return;
    }
}

void PrivacyFormatter::AppendSigned(const Conversion &conv, va_list *args)
{
    switch (conv.length) {
        case Length::LONG:
            AppendFormatted(conv, va_arg(*args, long));
            return;
        case Length::LONG_LONG:
        case Length::LONG_DOUBLE: // glibc reads %Ld as %lld
            AppendFormatted(conv, va_arg(*args, long long));
            return;
        case Length::SIZE:
            AppendFormatted(conv, va_arg(*args, std::make_signed_t<size_t>));
            return;
        case Length::INTMAX:
            AppendFormatted(conv, va_arg(*args, intmax_t));
            return;
        case Length::PTRDIFF:
            AppendFormatted(conv, va_arg(*args, ptrdiff_t));
            return;
        default: // char and short arrive promoted to int
            AppendFormatted(conv, va_arg(*args, int));
            return;
    }
}

void PrivacyFormatter::AppendUnsigned(const Conversion &conv, va_list *args)
{
    switch (conv.length) {
        case Length::LONG:
            AppendFormatted(conv, va_arg(*args, unsigned long));
            return;
        case Length::LONG_LONG:
        case Length::LONG_DOUBLE:
            AppendFormatted(conv, va_arg(*args, unsigned long long));
            return;
        case Length::SIZE:
            AppendFormatted(conv, va_arg(*args, size_t));
            return;
        case Length::INTMAX:
            AppendFormatted(conv, va_arg(*args, uintmax_t));
            return;
        case Length::PTRDIFF:
            AppendFormatted(conv, va_arg(*args, std::make_unsigned_t<ptrdiff_t>));
            return;
        default:
            AppendFormatted(conv, va_arg(*args, unsigned int));
            return;
    }
}

void PrivacyFormatter::AppendFloating(const Conversion &conv, va_list *args)
{
    if (conv.length == Length::LONG_DOUBLE) {
        AppendFormatted(conv, va_arg(*args, long double));
    } else {
        AppendFormatted(conv, va_arg(*args, double));
    }
}

template <typename T> void PrivacyFormatter::AppendFormatted(const Conversion &conv, T value)
{
    if (!conv.isPublic && !revealPrivate_) {
        AppendText(PRIVATE_TEXT, std::strlen(PRIVATE_TEXT));
        return;
    }
    // Most fields are short: formatted on the stack, they cost no allocation.
    size_t used = out_.size();
    size_t room = maxBytes_ - used;
    char field[SHORT_FIELD_BYTES];
    int length = std::snprintf(field, sizeof(field), conv.directive.c_str(), value);
    if (length < 0) {
        return;
    }
    if (static_cast<size_t>(length) < sizeof(field)) {
        out_.append(field, std::min(static_cast<size_t>(length), room));
        return;
    }
    // A longer one is written straight into the message, so that a huge field width costs no
    // more than the room that is left.
    out_.resize(maxBytes_ + 1);
    int written = std::snprintf(&out_[used], room + 1, conv.directive.c_str(), value);
    out_.resize(written < 0 ? used : used + std::min(static_cast<size_t>(written), room));
}

void PrivacyFormatter::AppendText(const char *text, size_t length)
{
    out_.append(text, std::min(length, maxBytes_ - out_.size()));
}
} // namespace HostPlatform
