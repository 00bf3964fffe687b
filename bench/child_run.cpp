#include "child_run.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

#include "unique_fd.h"

extern char **environ;

namespace VornBench {
namespace {
using Clock = std::chrono::steady_clock;

constexpr const char *SELF = "/proc/self/exe";
// Generous: a run that takes longer than this is stuck.
constexpr std::chrono::minutes CHILD_TIME_LIMIT(20);
constexpr size_t READ_CHUNK = 4096;

std::vector<std::string> ChildEnvironment(const std::vector<EnvChange> &changes)
{
    std::vector<std::string> entries;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        std::string text = *entry;
        std::string name = text.substr(0, text.find('='));
        bool changed = std::any_of(changes.begin(), changes.end(),
            [&name](const EnvChange &change) { return change.name == name; });
        if (!changed) {
            entries.push_back(std::move(text));
        }
    }
    for (const EnvChange &change : changes) {
        if (change.value) {
            entries.push_back(change.name + "=" + *change.value);
        }
    }
    return entries;
}

std::vector<char *> Pointers(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (std::string &text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

// Reads until the child closes its end; false when the time limit passed first.
bool ReadAll(int fd, std::string &output)
{
    const Clock::time_point deadline = Clock::now() + CHILD_TIME_LIMIT;
    char buffer[READ_CHUNK];
    for (;;) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0) {
            return false;
        }
        pollfd entry {fd, POLLIN, 0};
        int ready = poll(&entry, 1, static_cast<int>(left));
        if (ready == 0) {
            return false;
        }
        if (ready < 0) {
            if (errno == EINTR) {
                continue;
            }
            return true;
        }
        ssize_t count = read(fd, buffer, sizeof(buffer));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return true;
        }
        output.append(buffer, static_cast<size_t>(count));
    }
}
} // namespace

std::optional<RunResult> RunInChild(const std::vector<std::string> &arguments, const std::vector<EnvChange> &env,
    std::string &error)
{
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) {
        error = std::string("pipe: ") + std::strerror(errno);
        return std::nullopt;
    }
    VornTestbed::UniqueFd readEnd(fds[0]);
    VornTestbed::UniqueFd writeEnd(fds[1]);

    std::vector<std::string> argvTexts {"vorn_load"};
    argvTexts.insert(argvTexts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> envTexts = ChildEnvironment(env);
    std::vector<char *> argv = Pointers(argvTexts);
    std::vector<char *> envp = Pointers(envTexts);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, writeEnd.Get(), STDOUT_FILENO);
    pid_t pid = 0;
    int spawned = posix_spawn(&pid, SELF, &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        error = std::string("cannot start a run: ") + std::strerror(spawned);
        return std::nullopt;
    }
    writeEnd.Reset();

    std::string output;
    bool finished = ReadAll(readEnd.Get(), output);
    if (!finished) {
        kill(pid, SIGKILL);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    if (!finished) {
        error = "a run did not finish within its time limit and was killed";
        return std::nullopt;
    }
    // The result is the last line; the exit status only says whether every request was answered.
    size_t lineStart = output.find_last_of('\n', output.size() >= 2 ? output.size() - 2 : 0);
    std::string lastLine = output.substr(lineStart == std::string::npos ? 0 : lineStart + 1);
    nlohmann::json json = nlohmann::json::parse(lastLine, nullptr, false);
    if (!json.is_object()) {
        error = "a run printed no result (exit status " + std::to_string(status) + ")";
        return std::nullopt;
    }
    try {
        return RunResult::FromJson(json);
    } catch (const nlohmann::json::exception &e) {
        error = std::string("a run printed an incomplete result: ") + e.what();
        return std::nullopt;
    }
}
} // namespace VornBench
