#ifndef VORN_TESTS_SUPPORT_LOG_LINES_H
#define VORN_TESTS_SUPPORT_LOG_LINES_H

#include <algorithm>
#include <cstddef>
#include <string>

#include "hilog_host.h"

namespace VornTest {
// Lines equal to `text` that were logged under `tag` at `level`: a right text at the wrong level
// or under the wrong tag does not count.
inline size_t CountAt(const HostPlatform::LogCapture &logs, LogLevel level, const std::string &tag,
    const std::string &text)
{
    const auto records = logs.Records();
    return static_cast<size_t>(std::count_if(records.begin(), records.end(),
        [&](const auto &record) { return record.level == level && record.tag == tag && record.text == text; }));
}

inline size_t ServiceLines(const HostPlatform::LogCapture &logs, LogLevel level, const std::string &text)
{
    return CountAt(logs, level, "VornService", text);
}

// Every line at `level` under `tag`, whatever it says.
inline size_t CountLevel(const HostPlatform::LogCapture &logs, LogLevel level, const std::string &tag)
{
    const auto records = logs.Records();
    return static_cast<size_t>(std::count_if(records.begin(), records.end(),
        [&](const auto &record) { return record.level == level && record.tag == tag; }));
}
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_LOG_LINES_H
