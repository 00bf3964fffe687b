#ifndef VORN_TESTS_SUPPORT_SUBPROCESS_H
#define VORN_TESTS_SUPPORT_SUBPROCESS_H

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace VornTest {
struct ProcessOptions {
    // Changes to this process's environment for the child: a value sets, nullopt unsets.
    std::vector<std::pair<std::string, std::optional<std::string>>> env;
    std::string input;  // the child's standard input
    std::chrono::milliseconds timeout {60000};
};

struct ProcessResult {
    int exitCode = -1;  // -1 when the child did not exit normally or was killed at the timeout
    std::string out;
    std::string err;
    std::chrono::milliseconds elapsed {0};
};

// Runs a program to its end (killing it at the timeout), with its output collected in full.
ProcessResult RunProcess(const std::vector<std::string> &argv, const ProcessOptions &options = {});

// The text split at line ends, without them; no empty last element for a final newline.
std::vector<std::string> SplitLines(const std::string &text);
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_SUBPROCESS_H
