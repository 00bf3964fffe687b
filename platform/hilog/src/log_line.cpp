#include "log_line.h"

#include <cstdio>
#include <sys/syscall.h>
#include <unistd.h>

namespace HostPlatform {
namespace {
constexpr unsigned int DOMAIN_DIGITS_MASK = 0xFFFFF;
constexpr long NANOS_PER_MILLI = 1000000;

char LevelLetter(LogLevel level)
{
    switch (level) {
        case LOG_DEBUG:
            return 'D';
        case LOG_INFO:
            return 'I';
        case LOG_WARN:
            return 'W';
        case LOG_ERROR:
            return 'E';
        case LOG_FATAL:
            return 'F';
        case LOG_LEVEL_MAX:
            return 'X';
        default:
            return 'V';
    }
}

char TypeLetter(LogType type)
{
    switch (type) {
        case LOG_APP:
            return 'A';
        case LOG_INIT:
            return 'I';
        case LOG_CORE:
            return 'C';
        case LOG_KMSG:
            return 'K';
        case LOG_ONLY_PRERELEASE:
            return 'P';
        default:
            return ' ';
    }
}
} // namespace

LogOrigin CurrentLogOrigin()
{
    LogOrigin origin{};
    clock_gettime(CLOCK_REALTIME, &origin.time);
    origin.pid = getpid();
    origin.tid = static_cast<pid_t>(syscall(SYS_gettid));
    return origin;
}

std::string FormatLogLine(const LogRecord &record, const LogOrigin &origin)
{
    tm local{};
    localtime_r(&origin.time.tv_sec, &local);
    char prefix[128];
    int length = std::snprintf(prefix, sizeof(prefix), "%02d-%02d %02d:%02d:%02d.%03ld %5d %5d %c %c%05x/",
        local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
        origin.time.tv_nsec / NANOS_PER_MILLI, static_cast<int>(origin.pid), static_cast<int>(origin.tid),
        LevelLetter(record.level), TypeLetter(record.type), record.domain & DOMAIN_DIGITS_MASK);
    std::string line(prefix, length > 0 ? static_cast<size_t>(length) : 0);
    line += record.tag;
    line += ": ";
    line += record.text;
    return line;
}

std::string FormatLogLine(const LogRecord &record)
{
    return FormatLogLine(record, CurrentLogOrigin());
}
} // namespace HostPlatform
