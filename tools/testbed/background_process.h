#ifndef VORN_TESTBED_BACKGROUND_PROCESS_H
#define VORN_TESTBED_BACKGROUND_PROCESS_H

#include <string>
#include <sys/types.h>
#include <vector>

namespace VornTestbed {
// A program left running beside a test (a third-party server, say) until Stop() or the end of
// its owner. Its output goes to `logFile`, so that a failing test can show what it said.
class BackgroundProcess {
public:
    BackgroundProcess() = default;
    ~BackgroundProcess();
    BackgroundProcess(const BackgroundProcess &) = delete;
    BackgroundProcess &operator=(const BackgroundProcess &) = delete;

    // False when the program cannot be started (not installed, say); the reason is then in the log.
    bool Start(const std::vector<std::string> &argv, const std::string &logFile);
    // Ends the program (SIGTERM, then SIGKILL after a second) and reaps it.
    void Stop();
    // False once the program has exited on its own.
    bool Running();

private:
    pid_t pid_ = -1;
};
} // namespace VornTestbed

#endif // VORN_TESTBED_BACKGROUND_PROCESS_H
