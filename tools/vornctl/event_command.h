#ifndef VORN_TOOLS_VORNCTL_EVENT_COMMAND_H
#define VORN_TOOLS_VORNCTL_EVENT_COMMAND_H

#include <string>

#include "command_line.h"
#include "service_call.h"
#include "service_session.h"

namespace Vornctl {
// `vornctl event`: sends code 2, then gives the report time to reach the analytics client.
CommandOutcome RunEvent(const ServiceSession &session, const CommandLine &line, const std::string &paramStr);
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_EVENT_COMMAND_H
