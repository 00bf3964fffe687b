#include "background_process.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "child_process.h"
#include "unique_fd.h"

namespace VornTestbed {
namespace {
constexpr std::chrono::seconds TERM_GRACE(1);
} // namespace

BackgroundProcess::~BackgroundProcess()
{
    Stop();
}

bool BackgroundProcess::Start(const std::vector<std::string> &argv, const std::string &logFile)
{
    if (pid_ > 0) {
        return false;
    }
    UniqueFd log(open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    if (!log.Valid()) {
        return false;
    }
    std::string error;
    pid_ = StartProcess(argv, {}, {-1, log.Get(), log.Get()}, error);
    if (pid_ < 0) {
        const std::string line = "cannot start: " + error + "\n";
        (void)write(log.Get(), line.data(), line.size());
        return false;
    }
    return true;
}

bool BackgroundProcess::Running()
{
    if (pid_ <= 0) {
        return false;
    }
    if (waitpid(pid_, nullptr, WNOHANG) == 0) {
        return true;
    }
    pid_ = -1;
    return false;
}

void BackgroundProcess::Stop()
{
    if (!Running()) {
        return;
    }
    (void)kill(pid_, SIGTERM);
    bool killed = false;
    (void)ReapProcess(pid_, TERM_GRACE, killed);
    pid_ = -1;
}
} // namespace VornTestbed
