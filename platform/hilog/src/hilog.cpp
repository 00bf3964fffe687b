#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "capture_hub.h"
#include "hilog/log.h"
#include "log_line.h"
#include "privacy_formatter.h"

namespace {
constexpr unsigned int DOMAIN_OS_MIN = 0xD000000;
constexpr unsigned int DOMAIN_OS_MAX = 0xD0FFFFF;
// Both limits count the terminating NUL, as on the device.
constexpr size_t MAX_LOG_LEN = 4096;
constexpr size_t MAX_TAG_LEN = 32;
constexpr char REVEAL_PRIVATE_ENV[] = "VORN_HILOG_PRIVATE";
constexpr char LOG_FILE_ENV[] = "VORN_HILOG_FILE";

// Serialises writes so that lines of different threads never interleave in the sink.
std::mutex g_sinkMutex;

// The log file, kept open from line to line: opening and closing it for every line cost more
// than formatting and writing the line. It is opened again when VORN_HILOG_FILE names another
// file or the file was removed, so every line still lands in the file the variable names now.
class LogFile {
public:
    // The descriptor to append to, or -1 when the file cannot be opened. Call under g_sinkMutex.
    int For(const char *path)
    {
        if (fd_ >= 0 && path_ == path && !Removed()) {
            return fd_;
        }
        Close();
        fd_ = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
        path_ = fd_ >= 0 ? path : "";
        struct stat status {};
        regular_ = fd_ >= 0 && fstat(fd_, &status) == 0 && S_ISREG(status.st_mode);
        return fd_;
    }

private:
    // Only a regular file is removed and made anew under its name; a device such as /dev/null
    // stays, and asking about it would cost a system call on every line.
    bool Removed() const
    {
        struct stat status {};
        return regular_ && (fstat(fd_, &status) != 0 || status.st_nlink == 0);
    }

    void Close()
    {
        if (fd_ >= 0) {
            close(fd_);
            fd_ = -1;
        }
    }

    int fd_ = -1;
    bool regular_ = false;
    std::string path_;
};

bool DomainAccepted(LogType type, unsigned int domain)
{
    return type == LOG_APP || (domain >= DOMAIN_OS_MIN && domain <= DOMAIN_OS_MAX);
}

// Read on every call so that a test can switch it on and off.
bool PrivateRevealed()
{
    const char *value = std::getenv(REVEAL_PRIVATE_ENV);
    return value != nullptr && std::strcmp(value, "1") == 0;
}

std::vector<std::string> SplitNonEmptyLines(const std::string &message)
{
    std::vector<std::string> lines;
    size_t start = 0;
    while (start <= message.size()) {
        size_t end = message.find('\n', start);
        if (end == std::string::npos) {
            end = message.size();
        }
        if (end > start) {
            lines.emplace_back(message, start, end - start);
        }
        start = end + 1;
    }
    return lines;
}

int WriteAll(int fd, const std::string &data)
{
    size_t done = 0;
    while (done < data.size()) {
        ssize_t written = write(fd, data.data() + done, data.size() - done);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return -1;
        }
        done += static_cast<size_t>(written);
    }
    return static_cast<int>(done);
}

// Appends to the file named by VORN_HILOG_FILE, or writes to standard error when it is unset.
int WriteToSink(const std::string &data)
{
    std::lock_guard<std::mutex> lock(g_sinkMutex);
    const char *path = std::getenv(LOG_FILE_ENV);
    if (path == nullptr || *path == '\0') {
        return WriteAll(STDERR_FILENO, data);
    }
    // Never destroyed: threads may still log during static destruction.
    static LogFile *file = new LogFile();
    int fd = file->For(path);
    return fd < 0 ? -1 : WriteAll(fd, data);
}

int HiLogPrintArgs(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *fmt, va_list args)
{
    if (fmt == nullptr || !DomainAccepted(type, domain)) {
        return -1;
    }
    std::string shortTag(tag == nullptr ? "" : tag);
    shortTag.resize(std::min(shortTag.size(), MAX_TAG_LEN - 1));

    va_list argsCopy;
    va_copy(argsCopy, args);
    std::string message = HostPlatform::PrivacyFormatter(PrivateRevealed(), MAX_LOG_LEN - 1).Format(fmt, &argsCopy);
    va_end(argsCopy);

    HostPlatform::LogOrigin origin = HostPlatform::CurrentLogOrigin();
    std::vector<HostPlatform::LogRecord> records;
    std::string output;
    for (std::string &line : SplitNonEmptyLines(message)) {
        records.push_back({type, level, domain, shortTag, std::move(line)});
        output += HostPlatform::FormatLogLine(records.back(), origin);
        output += '\n';
    }
    int written = output.empty() ? 0 : WriteToSink(output);
    HostPlatform::PublishToCaptures(records);
    return written;
}
} // namespace

// Returns the number of bytes written to the sink (0 for an empty message), or -1 when the log
// is rejected or cannot be written.
int HiLogPrint(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    int result = HiLogPrintArgs(type, level, domain, tag, fmt, args);
    va_end(args);
    return result;
}
