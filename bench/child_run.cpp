#include "child_run.h"

#include <chrono>

#include "child_process.h"

namespace VornBench {
namespace {
constexpr const char *SELF = "/proc/self/exe";
// Generous: a run that takes longer than this is stuck.
constexpr std::chrono::minutes CHILD_TIME_LIMIT(20);

// The result is the last line; the exit status only says whether every request was answered.
std::string LastLine(const std::string &output)
{
    size_t lineStart = output.find_last_of('\n', output.size() >= 2 ? output.size() - 2 : 0);
    return output.substr(lineStart == std::string::npos ? 0 : lineStart + 1);
}
} // namespace

std::optional<RunResult> RunInChild(const std::vector<std::string> &arguments, const std::vector<EnvChange> &env,
    std::string &error)
{
    std::vector<std::string> argv {"vorn_load"};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    VornTestbed::ProcessOptions options;
    options.env = env;
    options.timeout = CHILD_TIME_LIMIT;
    options.program = SELF;
    options.inheritStderr = true;
    const VornTestbed::ProcessResult run = VornTestbed::RunProcess(argv, options);
    if (!run.startError.empty()) {
        error = "cannot start a run: " + run.startError;
        return std::nullopt;
    }
    if (run.timedOut) {
        error = "a run did not finish within its time limit and was killed";
        return std::nullopt;
    }
    nlohmann::json json = nlohmann::json::parse(LastLine(run.out), nullptr, false);
    if (!json.is_object()) {
        error = "a run printed no result (exit status " + std::to_string(run.exitCode) + ")";
        return std::nullopt;
    }
    try {
        return RunResult::FromJson(json);
    } catch (const nlohmann::json::exception &e) {
        error = std::string("a run printed an incomplete result: ") + e.what();
        return std::nullopt;
    }
}
} // namespace VornBench
