#ifndef VORN_TOOLS_VORNCTL_DEMO_COMMAND_H
#define VORN_TOOLS_VORNCTL_DEMO_COMMAND_H

#include <chrono>
#include <string>

namespace Vornctl {
// `vornctl demo`: one request without base URLs through the whole service against a local
// stand-in of the routing service, told in plain words on standard output. With an RTT, a
// latency relay sits in front of the server and a second request follows, to show what a
// round trip costs it.
int RunDemo(const std::string &libraryPath, std::chrono::milliseconds rtt);
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_DEMO_COMMAND_H
