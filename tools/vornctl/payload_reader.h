#ifndef VORN_TOOLS_VORNCTL_PAYLOAD_READER_H
#define VORN_TOOLS_VORNCTL_PAYLOAD_READER_H

#include <optional>
#include <string>

namespace Vornctl {
// The text a REQUEST or EVENT argument stands for: "-" reads standard input, "@FILE" the file,
// anything else is the text itself. Null, with `error` set to one line, when it cannot be read.
std::optional<std::string> ReadPayload(const std::string &argument, std::string &error);
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_PAYLOAD_READER_H
