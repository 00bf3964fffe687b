#ifndef VORN_TOOLS_VORNCTL_DEMO_COMMAND_H
#define VORN_TOOLS_VORNCTL_DEMO_COMMAND_H

#include <string>

namespace Vornctl {
// `vornctl demo`: one request without base URLs through the whole service against a local
// stand-in of the routing service, told in plain words on standard output.
int RunDemo(const std::string &libraryPath);
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_DEMO_COMMAND_H
