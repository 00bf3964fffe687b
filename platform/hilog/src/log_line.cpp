#include "log_line.h"

#include <atomic>
#include <cstdio>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace HostPlatform {
namespace {
constexpr unsigned int DOMAIN_DIGITS_MASK = 0xFFFFF;
constexpr long NANOS_PER_MILLI = 1000000;

// Ids are asked of the kernel once per process and thread, not once per line: the system calls
// cost more than formatting the line. Only a forked child changes them, so fork bumps the
// generation and clears the pid, and every thread asks again.
std::atomic<unsigned> g_forkGeneration {0};
std::atomic<pid_t> g_pid {0};

void ForgetIdsInChild()
{
    g_pid.store(0, std::memory_order_relaxed);
    g_forkGeneration.fetch_add(1, std::memory_order_relaxed);
}

pid_t ProcessId()
{
    static const bool forkWatched = pthread_atfork(nullptr, nullptr, ForgetIdsInChild) == 0;
    pid_t pid = g_pid.load(std::memory_order_relaxed);
    if (pid == 0 || !forkWatched) {
        pid = getpid();
        g_pid.store(pid, std::memory_order_relaxed);
    }
    return pid;
}

pid_t ThreadId()
{
    thread_local unsigned cachedGeneration = 0;
    thread_local pid_t cachedTid = 0;
    const unsigned generation = g_forkGeneration.load(std::memory_order_relaxed);
    if (cachedTid == 0 || cachedGeneration != generation) {
        cachedTid = static_cast<pid_t>(syscall(SYS_gettid));
        cachedGeneration = generation;
    }
    return cachedTid;
}

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
    LogOrigin origin {};
    clock_gettime(CLOCK_REALTIME, &origin.time);
    origin.pid = ProcessId();
    origin.tid = ThreadId();
    return origin;
}

std::string FormatLogLine(const LogRecord &record, const LogOrigin &origin)
{
    // localtime_r takes a process-wide lock and works out the zone on every call; the lines a
    // thread logs within one second share its result.
    thread_local time_t cachedSecond = -1;
    thread_local tm cachedLocal {};
    if (cachedSecond != origin.time.tv_sec) {
        localtime_r(&origin.time.tv_sec, &cachedLocal);
        cachedSecond = origin.time.tv_sec;
    }
    const tm &local = cachedLocal;
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
} // namespace HostPlatform
