#ifndef VORN_TESTBED_CHILD_PROCESS_H
#define VORN_TESTBED_CHILD_PROCESS_H

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace VornTestbed {
struct ProcessOptions {
    // Changes to this process's environment for the child: a value sets, nullopt unsets.
    std::vector<std::pair<std::string, std::optional<std::string>>> env;
    std::string input; // the child's standard input
    std::chrono::milliseconds timeout {60000};
    // The file to start when it is not argv[0] (which is then only the name the child sees).
    std::string program;
    // The child writes to this process's standard error instead of `err`, for long runs whose
    // progress someone watches.
    bool inheritStderr = false;
};

struct ProcessResult {
    int exitCode = -1; // -1 when the child did not exit normally or was killed at the timeout
    bool timedOut = false;
    std::string startError; // why the child could not be started; empty once it was
    std::string out;
    std::string err;
    std::chrono::milliseconds elapsed {0};
};

// The standard streams to give a started child: a descriptor, or -1 to let it have ours.
struct ChildStreams {
    int in = -1;
    int out = -1;
    int err = -1;
};

// Starts options.program, or else argv[0] (looked up on PATH when it names no directory), with
// the environment options.env makes of ours; the other options are not read here. The child's
// pid, or -1 with the reason in `error`.
pid_t StartProcess(const std::vector<std::string> &argv, const ProcessOptions &options, const ChildStreams &streams,
    std::string &error);

// Waits for `pid` to end, killing it (SIGKILL) once `timeout` has passed. Its exit code, or -1
// when it did not exit normally; `timedOut` tells whether it had to be killed.
int ReapProcess(pid_t pid, std::chrono::milliseconds timeout, bool &timedOut);

// Runs a program to its end (killing it at the timeout), with its output collected in full.
// Output goes to unlinked temporary files, not pipes, so a child that fills both standard
// output and standard error can never block on a reader that waits for the other.
ProcessResult RunProcess(const std::vector<std::string> &argv, const ProcessOptions &options = {});
} // namespace VornTestbed

#endif // VORN_TESTBED_CHILD_PROCESS_H
