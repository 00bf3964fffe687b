#include "request_command.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include <nlohmann/json.hpp>

#include "exit_status.h"
#include "ffrt_host.h"
#include "ipc_host.h"
#include "response_collector.h"
#include "response_printer.h"

namespace Vornctl {
namespace {
constexpr int SUCCESS_CODE = 200;
constexpr std::chrono::milliseconds POLL_INTERVAL {10};

bool IsSuccess(const std::string &response)
{
    nlohmann::json parsed = nlohmann::json::parse(response, nullptr, false);
    if (!parsed.is_object()) {
        return false;
    }
    auto code = parsed.find("code");
    return code != parsed.end() && code->is_number_integer() && code->get<int64_t>() == SUCCESS_CODE;
}

int ExitStatusFor(const std::vector<std::string> &responses)
{
    if (responses.empty()) {
        return EXIT_NO_RESPONSE;
    }
    return std::any_of(responses.begin(), responses.end(), IsSuccess) ? EXIT_SUCCESS_RESPONSE : EXIT_FAILURE_RESPONSES;
}

std::chrono::milliseconds Left(std::chrono::steady_clock::time_point deadline)
{
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return std::max(left, std::chrono::milliseconds(0));
}

// Responses are sent from inside the service's pool tasks, so once the task runtime is idle no
// further response can be sent: both modes stop there rather than sit out the whole wait. A
// response is a one-way call, though, and may still be on its way when the task that sent it is
// done; it is awaited too, or the tool would report no response while one is arriving.
void AwaitResponses(const ResponseCollector &collector, bool collectAll, std::chrono::milliseconds wait)
{
    auto deadline = std::chrono::steady_clock::now() + wait;
    if (collectAll) {
        HostPlatform::FfrtWaitIdle(wait);
        HostPlatform::WaitOneWayDelivered(collector.Callback(), Left(deadline));
        return;
    }
    while (collector.Count() == 0 && !HostPlatform::FfrtIsIdle()) {
        std::chrono::milliseconds left = Left(deadline);
        if (left.count() <= 0) {
            return;
        }
        collector.WaitForCount(1, std::min(left, POLL_INTERVAL));
    }
    if (collector.Count() == 0) {
        HostPlatform::WaitOneWayDelivered(collector.Callback(), Left(deadline));
    }
}
} // namespace

CommandOutcome RunRequest(const ServiceSession &session, const CommandLine &line, const std::string &paramStr,
    const std::string &prefix)
{
    // The printer outlives this function: late attempts may still call back while the tool goes
    // on to the next request or ends, and it must then drop their responses quietly.
    auto printer = std::make_shared<ResponsePrinter>(stdout, prefix);
    std::shared_ptr<ResponseCollector> collector =
        ResponseCollector::Create([printer](const std::string &response) { printer->Print(response); });

    CallSettings settings = CallSettingsFor(line);
    CommandOutcome outcome;
    OHOS::sptr<OHOS::IRemoteObject> callback = line.noCallback ? nullptr : collector->Callback();
    outcome.call = session.Request(settings.caller, paramStr, callback, settings.descriptor, settings.code);
    if (outcome.call.result != 0) {
        printer->Close();
        outcome.exitStatus = EXIT_CALL_FAILED;
        return outcome;
    }
    AwaitResponses(*collector, line.collectAll, line.wait);
    outcome.exitStatus = ExitStatusFor(printer->Close());
    return outcome;
}

std::vector<CommandOutcome> RunRequests(const ServiceSession &session, const CommandLine &line,
    const std::vector<std::string> &paramStrs)
{
    std::vector<CommandOutcome> outcomes;
    for (size_t i = 0; i < paramStrs.size(); ++i) {
        outcomes.push_back(RunRequest(session, line, paramStrs[i], LinePrefix(i, paramStrs.size())));
    }
    return outcomes;
}

int CombinedExitStatus(const std::vector<CommandOutcome> &outcomes)
{
    int status = EXIT_SUCCESS_RESPONSE;
    for (const CommandOutcome &outcome : outcomes) {
        status = std::max(status, outcome.exitStatus);
    }
    return status;
}

std::string LinePrefix(size_t index, size_t count)
{
    return count > 1 ? std::to_string(index + 1) + "\t" : std::string();
}
} // namespace Vornctl
