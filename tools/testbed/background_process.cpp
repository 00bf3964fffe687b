#include "background_process.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace VornTestbed {
namespace {
constexpr std::chrono::seconds TERM_GRACE(1);
constexpr std::chrono::milliseconds REAP_POLL(10);
constexpr int EXEC_FAILED = 127;
} // namespace

BackgroundProcess::~BackgroundProcess()
{
    Stop();
}

bool BackgroundProcess::Start(const std::vector<std::string> &argv, const std::string &logFile)
{
    if (argv.empty() || pid_ > 0) {
        return false;
    }
    std::vector<char *> args;
    for (const std::string &arg : argv) {
        args.push_back(const_cast<char *>(arg.c_str()));
    }
    args.push_back(nullptr);
    const int log = open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (log < 0) {
        return false;
    }
    const pid_t pid = fork();
    if (pid == 0) {
        // Only async-signal-safe calls between fork and exec: the parent may have many threads.
        (void)dup2(log, STDOUT_FILENO);
        (void)dup2(log, STDERR_FILENO);
        execvp(args[0], args.data());
        const char failed[] = "background process: exec failed\n";
        (void)write(STDERR_FILENO, failed, sizeof(failed) - 1);
        _exit(EXEC_FAILED);
    }
    close(log);
    if (pid < 0) {
        return false;
    }
    pid_ = pid;
    return Running();
}

bool BackgroundProcess::Running()
{
    if (pid_ <= 0) {
        return false;
    }
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) == 0) {
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
    const auto deadline = std::chrono::steady_clock::now() + TERM_GRACE;
    while (Running() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(REAP_POLL);
    }
    if (Running()) {
        (void)kill(pid_, SIGKILL);
        (void)waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
}
} // namespace VornTestbed
