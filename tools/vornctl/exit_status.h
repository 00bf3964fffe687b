#ifndef VORN_TOOLS_VORNCTL_EXIT_STATUS_H
#define VORN_TOOLS_VORNCTL_EXIT_STATUS_H

namespace Vornctl {
// Scripts depend on these values; they are part of the tool's interface.
constexpr int EXIT_SUCCESS_RESPONSE = 0; // request: a response with "code":200; event: result 0
constexpr int EXIT_FAILURE_RESPONSES = 1; // request: responses arrived, none with 200
constexpr int EXIT_NO_RESPONSE = 2; // request: no response arrived
constexpr int EXIT_CALL_FAILED = 3; // the transaction result was not 0
constexpr int EXIT_USAGE = 64; // the command line is wrong
constexpr int EXIT_UNAVAILABLE = 69; // the service library could not be loaded or started
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_EXIT_STATUS_H
