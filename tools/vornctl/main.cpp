// vornctl, the host runner: loads the service library as the device's service host does and
// talks to it as a client process would. See UsageText() for the interface.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "command_line.h"
#include "demo_command.h"
#include "dump_command.h"
#include "event_command.h"
#include "exit_status.h"
#include "payload_reader.h"
#include "request_command.h"
#include "service_session.h"

namespace {
using namespace Vornctl;

int UsageError(const std::string &message)
{
    std::fprintf(stderr, "vornctl: %s (see vornctl --help)\n", message.c_str());
    return EXIT_USAGE;
}

std::string LibraryPath(const CommandLine &line)
{
    if (!line.library) {
        return ServiceSession::DefaultLibraryPath();
    }
    // Taken relative to where the tool was started, not to --root.
    std::error_code ignored;
    std::filesystem::path absolute = std::filesystem::absolute(*line.library, ignored);
    return absolute.empty() ? *line.library : absolute.string();
}

// Attempts that lost the race go on logging from the service's pool threads after the tool has
// its outcome, and the outcome lines must end standard error. So the service's later log lines
// are sent to /dev/null, and the outcome is written through a copy of the original descriptor.
int DetachStandardError()
{
    int original = dup(STDERR_FILENO);
    int devNull = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (original < 0 || devNull < 0 || dup2(devNull, STDERR_FILENO) < 0) {
        return STDERR_FILENO;
    }
    close(devNull);
    return original;
}

// The outcome lines of each call, led by the call's line prefix when there were several.
void PrintCallOutcomes(const std::vector<CommandOutcome> &outcomes)
{
    int fd = DetachStandardError();
    for (size_t i = 0; i < outcomes.size(); ++i) {
        const CallResult &call = outcomes[i].call;
        std::string prefix = LinePrefix(i, outcomes.size());
        if (call.reply) {
            dprintf(fd, "%sreply: %d\n", prefix.c_str(), static_cast<int>(*call.reply));
        } else {
            dprintf(fd, "%sreply: none\n", prefix.c_str());
        }
        dprintf(fd, "%sresult: %d\n", prefix.c_str(), call.result);
    }
}

std::optional<std::vector<std::string>> ReadPayloads(const std::vector<std::string> &arguments, std::string &error)
{
    std::vector<std::string> payloads;
    for (const std::string &argument : arguments) {
        std::optional<std::string> payload = ReadPayload(argument, error);
        if (!payload) {
            return std::nullopt;
        }
        payloads.push_back(std::move(*payload));
    }
    return payloads;
}

// Loads and starts the service from where the tool was started, then moves to --root.
std::unique_ptr<ServiceSession> OpenSession(const CommandLine &line, int &status)
{
    std::string libraryPath = LibraryPath(line);
    if (line.root && chdir(line.root->c_str()) != 0) {
        status = UsageError("--root " + *line.root + ": " + std::strerror(errno));
        return nullptr;
    }
    std::string error;
    std::unique_ptr<ServiceSession> session = ServiceSession::Open(libraryPath, error);
    if (session == nullptr) {
        std::fprintf(stderr, "vornctl: %s\n", error.c_str());
        status = EXIT_UNAVAILABLE;
    }
    return session;
}

int RunCall(const CommandLine &line)
{
    // Read before --root is applied, so that @FILE is relative to where the tool was started.
    std::string error;
    std::optional<std::vector<std::string>> payloads = ReadPayloads(line.payloads, error);
    if (!payloads) {
        return UsageError(error);
    }
    int status = EXIT_SUCCESS_RESPONSE;
    std::unique_ptr<ServiceSession> session = OpenSession(line, status);
    if (session == nullptr) {
        return status;
    }
    if (line.command == Command::EVENT) {
        CommandOutcome outcome = RunEvent(*session, line, payloads->front());
        PrintCallOutcomes({outcome});
        return outcome.exitStatus;
    }
    std::vector<CommandOutcome> outcomes = RunRequests(*session, line, *payloads);
    status = CombinedExitStatus(outcomes);
    if (line.dumpAfter) {
        status = std::max(status, RunDump(*session, {}, stdout).exitStatus);
    }
    PrintCallOutcomes(outcomes);
    return status;
}

int RunDumpOnly(const CommandLine &line)
{
    int status = EXIT_SUCCESS_RESPONSE;
    std::unique_ptr<ServiceSession> session = OpenSession(line, status);
    if (session == nullptr) {
        return status;
    }
    CommandOutcome outcome = RunDump(*session, line.dumpArgs, stdout);
    dprintf(DetachStandardError(), "result: %d\n", outcome.call.result);
    return outcome.exitStatus;
}

int Run(int argc, char *argv[])
{
    ParsedCommandLine parsed = ParseCommandLine(std::vector<std::string>(argv + 1, argv + argc));
    if (!parsed.commandLine) {
        return UsageError(parsed.error);
    }
    const CommandLine &line = *parsed.commandLine;
    switch (line.command) {
        case Command::HELP:
            std::fputs(UsageText(), stdout);
            return EXIT_SUCCESS_RESPONSE;
        case Command::DEMO:
            return RunDemo(ServiceSession::DefaultLibraryPath(), line.demoRtt);
        case Command::DUMP:
            return RunDumpOnly(line);
        case Command::REQUEST:
        case Command::EVENT:
            break;
    }
    return RunCall(line);
}
} // namespace

int main(int argc, char *argv[])
{
    int status = Run(argc, argv);
    std::fflush(stdout);
    std::fflush(stderr);
    // Attempts that lost the race may still be running on the service's pool threads, inside the
    // service's code and with references to this tool's callback. Running static destructors
    // under them (the pools, the platform's registries, the loaded library) would crash or hang
    // the exit, so the process ends here without them.
    std::_Exit(status);
}
