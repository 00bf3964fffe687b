#ifndef VORN_TOOLS_VORNCTL_DUMP_COMMAND_H
#define VORN_TOOLS_VORNCTL_DUMP_COMMAND_H

#include <cstdio>
#include <string>
#include <vector>

#include "service_call.h"
#include "service_session.h"

namespace Vornctl {
// `vornctl dump` and `request --dump`: asks the service for its dump through its remote object
// with a real file descriptor, as the platform's dump tool does, and copies what the service
// wrote to `out`. The exit status is 0 when the dump transaction succeeded, else 3.
CommandOutcome RunDump(const ServiceSession &session, const std::vector<std::string> &args, std::FILE *out);
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_DUMP_COMMAND_H
