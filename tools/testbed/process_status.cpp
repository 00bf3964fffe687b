#include "process_status.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "unique_fd.h"

namespace VornTestbed {
namespace {
constexpr size_t STATUS_BUFFER_SIZE = 4096;
constexpr int DECIMAL = 10;
} // namespace

// Read often while a benchmark run is measured, so it stays cheap: one read, three lookups.
ProcessStatus ProcessStatus::Read()
{
    ProcessStatus status;
    UniqueFd file(open("/proc/self/status", O_RDONLY | O_CLOEXEC));
    char text[STATUS_BUFFER_SIZE];
    ssize_t length = file.Valid() ? read(file.Get(), text, sizeof(text) - 1) : -1;
    if (length <= 0) {
        return status;
    }
    text[length] = '\0';
    auto field = [&text](const char *key) -> size_t {
        const char *found = std::strstr(text, key);
        return found == nullptr ? 0 : std::strtoul(found + std::strlen(key), nullptr, DECIMAL);
    };
    status.threads = field("\nThreads:");
    status.rssKib = field("\nVmRSS:");
    status.hwmKib = field("\nVmHWM:");
    return status;
}
} // namespace VornTestbed
