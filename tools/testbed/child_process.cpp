#include "child_process.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <thread>

extern char **environ;

namespace VornTestbed {
namespace {
using FilePtr = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

constexpr std::chrono::milliseconds WAIT_STEP(5);

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

} // namespace

pid_t StartProcess(const std::vector<std::string> &argv, const ProcessOptions &options, const ChildStreams &streams,
    std::string &error)
{
    if (argv.empty()) {
        error = "no program";
        return -1;
    }
    std::vector<std::string> args = argv;
    std::vector<std::string> env = Environment(options);
    std::vector<char *> argPointers = Pointers(args);
    std::vector<char *> envPointers = Pointers(env);
    const std::string &program = options.program.empty() ? argv[0] : options.program;

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const int targets[] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
    const int given[] = {streams.in, streams.out, streams.err};
    for (size_t i = 0; i < sizeof(targets) / sizeof(targets[0]); ++i) {
        if (given[i] >= 0) {
            posix_spawn_file_actions_adddup2(&actions, given[i], targets[i]);
        }
    }
    pid_t pid = 0;
    int spawned = posix_spawnp(&pid, program.c_str(), &actions, nullptr, argPointers.data(), envPointers.data());
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        error = std::strerror(spawned);
        return -1;
    }
    return pid;
}

int ReapProcess(pid_t pid, std::chrono::milliseconds timeout, bool &timedOut)
{
    auto deadline = std::chrono::steady_clock::now() + timeout;
    int status = 0;
    timedOut = false;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            timedOut = true;
            return -1;
        }
        std::this_thread::sleep_for(WAIT_STEP);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

ProcessResult RunProcess(const std::vector<std::string> &argv, const ProcessOptions &options)
{
    ProcessResult result;
    FilePtr in = TempFile(options.input);
    FilePtr out = TempFile();
    FilePtr err = TempFile();
    if (argv.empty() || in == nullptr || out == nullptr || err == nullptr) {
        result.startError = argv.empty() ? "no program" : "no temporary file";
        return result;
    }
    ChildStreams streams {fileno(in.get()), fileno(out.get()), options.inheritStderr ? -1 : fileno(err.get())};
    auto start = std::chrono::steady_clock::now();
    pid_t pid = StartProcess(argv, options, streams, result.startError);
    if (pid < 0) {
        return result;
    }
    result.exitCode = ReapProcess(pid, options.timeout, result.timedOut);
    result.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    result.out = ReadAll(out.get());
    result.err = ReadAll(err.get());
    return result;
}
} // namespace VornTestbed
