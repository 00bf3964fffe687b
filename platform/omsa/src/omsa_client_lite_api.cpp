#include "omsa_client_lite_api.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace OHOS {
namespace OmsaCloud {
namespace {
constexpr char LOG_FILE_ENV[] = "VORN_OMSA_LOG";
constexpr char RESULT_ENV[] = "VORN_OMSA_RESULT";

std::mutex g_logMutex;

class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor()
    {
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    int Get() const { return fd_; }

private:
    int fd_;
};

// Appends the call as one line, written with one write so that concurrent callers never mix.
void RecordCall(const nlohmann::json &call)
{
    const char *path = std::getenv(LOG_FILE_ENV);
    if (path == nullptr || *path == '\0') {
        return;
    }
    // Replacing invalid UTF-8 keeps a bad event from turning into an exception here.
    std::string line = call.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    std::lock_guard<std::mutex> lock(g_logMutex);
    FileDescriptor file(open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644));
    if (file.Get() < 0) {
        return;
    }
    size_t done = 0;
    while (done < line.size()) {
        ssize_t written = write(file.Get(), line.data() + done, line.size() - done);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return;
        }
        done += static_cast<size_t>(written);
    }
}

// Read on every call so that a test can make the client fail and recover.
OmsaResultLite ConfiguredResult()
{
    OmsaResultLite result;
    const char *text = std::getenv(RESULT_ENV);
    if (text == nullptr || *text == '\0') {
        return result;
    }
    char *end = nullptr;
    errno = 0;
    long code = std::strtol(text, &end, 10);
    if (errno == 0 && *end == '\0' && code >= INT32_MIN && code <= INT32_MAX) {
        result.code = static_cast<int32_t>(code);
    }
    return result;
}
} // namespace

OmsaResultLite OmsaClientLiteApi::SetConfigOptions(const OmsaConfigLite &config)
{
    RecordCall({
        {"op", "SetConfigOptions"},
        {"tag", config.tag},
        {"package", config.packageName},
        {"saId", config.saId},
        {"collectUrl", config.maintenanceConfig ? config.maintenanceConfig->collectUrl : std::string()},
    });
    return ConfiguredResult();
}

OmsaResultLite OmsaClientLiteApi::OnEvent(const std::string &tag, EventTypeLite type, const std::string &eventId,
    const std::unordered_map<std::string, std::string> &data)
{
    RecordCall({
        {"op", "OnEvent"},
        {"tag", tag},
        {"type", static_cast<int32_t>(type)},
        {"eventId", eventId},
        {"data", data},
    });
    return ConfiguredResult();
}
} // namespace OmsaCloud
} // namespace OHOS
