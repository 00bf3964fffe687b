#ifndef VORN_TOOLS_VORNCTL_REQUEST_COMMAND_H
#define VORN_TOOLS_VORNCTL_REQUEST_COMMAND_H

#include <string>

#include "command_line.h"
#include "service_call.h"
#include "service_session.h"

namespace Vornctl {
// `vornctl request`: sends code 1 with a callback that prints every response to standard
// output, then waits for the first response (or, with --all, for every attempt to end).
CommandOutcome RunRequest(const ServiceSession &session, const CommandLine &line, const std::string &paramStr);
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_REQUEST_COMMAND_H
