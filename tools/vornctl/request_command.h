#ifndef VORN_TOOLS_VORNCTL_REQUEST_COMMAND_H
#define VORN_TOOLS_VORNCTL_REQUEST_COMMAND_H

#include <string>
#include <vector>

#include "command_line.h"
#include "service_call.h"
#include "service_session.h"

namespace Vornctl {
// `vornctl request`: sends code 1 with a callback that prints every response to standard
// output, then waits for the first response (or, with --all, for every attempt to end).
// `prefix` starts each response line printed.
CommandOutcome RunRequest(const ServiceSession &session, const CommandLine &line, const std::string &paramStr,
    const std::string &prefix = {});

// Several requests, one after another on the same service: each is sent once the one before it
// has been waited for as RunRequest waits. Outcomes are in the order of `paramStrs`.
std::vector<CommandOutcome> RunRequests(const ServiceSession &session, const CommandLine &line,
    const std::vector<std::string> &paramStrs);

// The exit status of several requests: 0 when every one exited 0, else the highest of theirs
// (no 200 < no response < transaction refused).
int CombinedExitStatus(const std::vector<CommandOutcome> &outcomes);

// What starts the lines answering request `index` (from 0) of `count`: nothing for a single
// request, whose lines need no number, else "N\t" with N counted from 1.
std::string LinePrefix(size_t index, size_t count);
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_REQUEST_COMMAND_H
