#include "event_command.h"

#include <algorithm>

#include "eventhandler_host.h"
#include "exit_status.h"
#include "ffrt_host.h"

namespace Vornctl {
CommandOutcome RunEvent(const ServiceSession &session, const CommandLine &line, const std::string &paramStr)
{
    CallSettings settings = CallSettingsFor(line);
    CommandOutcome outcome;
    outcome.call = session.Event(settings.caller, paramStr, settings.descriptor, settings.code);
    // The report is posted to the analytics event runner before the call returns; it is handed
    // over once that runner (and anything the runtime still runs) has gone idle.
    auto deadline = std::chrono::steady_clock::now() + line.wait;
    auto left = [&deadline]() {
        return std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    };
    if (HostPlatform::FfrtWaitIdle(line.wait)) {
        HostPlatform::EventRunnersWaitIdle(std::max(left(), std::chrono::milliseconds(0)));
    }
    outcome.exitStatus = outcome.call.result == 0 ? EXIT_SUCCESS_RESPONSE : EXIT_CALL_FAILED;
    return outcome;
}
} // namespace Vornctl
