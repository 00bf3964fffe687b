#ifndef VORN_TOOLS_VORNCTL_SERVICE_CALL_H
#define VORN_TOOLS_VORNCTL_SERVICE_CALL_H

#include <cstdint>
#include <string>

#include "command_line.h"
#include "ipc_host.h"
#include "service_session.h"

namespace Vornctl {
// How one transaction is written, as the command line chose it.
struct CallSettings {
    HostPlatform::CallerIdentity caller {};
    std::u16string descriptor;
    uint32_t code = 0;
};

// What came of a command: the transaction's outcome (for "reply:" and "result:") and the exit status.
struct CommandOutcome {
    CallResult call;
    int exitStatus = 0;
};

CallSettings CallSettingsFor(const CommandLine &line);
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_SERVICE_CALL_H
