#ifndef VORN_BENCH_CHILD_RUN_H
#define VORN_BENCH_CHILD_RUN_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "run_result.h"

namespace VornBench {
// One change to the child's environment: set the value, or remove the variable when it is null.
using EnvChange = std::pair<std::string, std::optional<std::string>>;

// Runs this program again as a child process with `arguments` and the environment changed as
// asked, and reads the RunResult it prints as JSON on standard output. Each run thus has a
// process of its own: thread and memory figures are its alone, and every service run starts
// cold. Null with `error` set when the child fails, prints no result or outlives its time limit
// (it is then killed).
std::optional<RunResult> RunInChild(const std::vector<std::string> &arguments, const std::vector<EnvChange> &env,
    std::string &error);
} // namespace VornBench

#endif // VORN_BENCH_CHILD_RUN_H
