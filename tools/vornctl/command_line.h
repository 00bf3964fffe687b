#ifndef VORN_TOOLS_VORNCTL_COMMAND_LINE_H
#define VORN_TOOLS_VORNCTL_COMMAND_LINE_H

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Vornctl {
enum class Command { HELP, REQUEST, EVENT, DEMO, DUMP };
enum class CallerKind { NATIVE, SYSTEM_APP, APP };

// What the command line asks for, with every default already applied.
struct CommandLine {
    Command command = Command::HELP;
    std::vector<std::string> payloads; // REQUESTs (one or more) or the EVENT as given: text, @FILE or -
    std::optional<std::string> root;
    CallerKind caller = CallerKind::NATIVE;
    pid_t uid = 0;
    std::optional<std::string> descriptor; // empty: the service's own
    uint32_t code = 0;
    bool noCallback = false;
    bool collectAll = false;
    bool dumpAfter = false; // request --dump: the service's dump after the responses
    std::chrono::milliseconds wait {0};
    std::optional<std::string> library; // empty: the one built beside the tool
    std::chrono::milliseconds demoRtt {0}; // demo: round-trip time a relay adds; 0: no relay
    std::vector<std::string> dumpArgs; // dump: the arguments handed to the service's dump
};

struct ParsedCommandLine {
    std::optional<CommandLine> commandLine;
    std::string error; // one line saying what is wrong, when commandLine is empty
};

// `args` are the arguments after the program name.
ParsedCommandLine ParseCommandLine(const std::vector<std::string> &args);

const char *UsageText();
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_COMMAND_LINE_H
