#include "subprocess.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <memory>
#include <thread>

extern char **environ;

namespace VornTest {
namespace {
using FilePtr = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

FilePtr TempFile(const std::string &content = {})
{
    FilePtr file(std::tmpfile(), &std::fclose);
    if (file != nullptr && !content.empty()) {
        std::fwrite(content.data(), 1, content.size(), file.get());
        std::fflush(file.get());
        std::rewind(file.get());
    }
    return file;
}

std::string ReadAll(std::FILE *file)
{
    std::string text;
    std::fseek(file, 0, SEEK_SET);
    char buffer[4096];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof(buffer), file)) > 0) {
        text.append(buffer, got);
    }
    return text;
}

std::vector<std::string> Environment(const ProcessOptions &options)
{
    std::map<std::string, std::string> values;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        std::string text(*entry);
        size_t equals = text.find('=');
        if (equals != std::string::npos) {
            values[text.substr(0, equals)] = text.substr(equals + 1);
        }
    }
    for (const auto &[name, value] : options.env) {
        if (value) {
            values[name] = *value;
        } else {
            values.erase(name);
        }
    }
    std::vector<std::string> entries;
    for (const auto &[name, value] : values) {
        entries.push_back(name + "=" + value);
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

// Waits for the child; kills it once the timeout has passed.
int Wait(pid_t pid, std::chrono::milliseconds timeout)
{
    auto deadline = std::chrono::steady_clock::now() + timeout;
    int status = 0;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
} // namespace

ProcessResult RunProcess(const std::vector<std::string> &argv, const ProcessOptions &options)
{
    ProcessResult result;
    FilePtr in = TempFile(options.input);
    FilePtr out = TempFile();
    FilePtr err = TempFile();
    if (argv.empty() || in == nullptr || out == nullptr || err == nullptr) {
        return result;
    }
    std::vector<std::string> args = argv;
    std::vector<std::string> env = Environment(options);
    std::vector<char *> argPointers = Pointers(args);
    std::vector<char *> envPointers = Pointers(env);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fileno(in.get()), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(out.get()), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(err.get()), STDERR_FILENO);
    auto start = std::chrono::steady_clock::now();
    pid_t pid = 0;
    int spawned = posix_spawn(&pid, argPointers[0], &actions, nullptr, argPointers.data(), envPointers.data());
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        return result;
    }
    result.exitCode = Wait(pid, options.timeout);
    result.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    result.out = ReadAll(out.get());
    result.err = ReadAll(err.get());
    return result;
}

std::vector<std::string> SplitLines(const std::string &text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}
} // namespace VornTest
