#ifndef VORN_TOOLS_VORNCTL_RESPONSE_PRINTER_H
#define VORN_TOOLS_VORNCTL_RESPONSE_PRINTER_H

#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

namespace Vornctl {
// Writes each response to a stream as one line, flushed at once, until it is closed. What it
// printed is exactly what Close returns, so the exit status is decided on the lines a script saw
// even when a late attempt answers while the tool is finishing (or has moved on to the next
// request). Each line starts with `prefix`, which tells apart the answers to several requests.
class ResponsePrinter {
public:
    explicit ResponsePrinter(std::FILE *out, std::string prefix = {});

    void Print(const std::string &response);
    // Stops printing; returns every response printed, in order.
    std::vector<std::string> Close();

private:
    std::FILE *out_;
    const std::string prefix_;
    std::mutex mutex_;
    bool closed_ = false;
    std::vector<std::string> printed_;
};
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_RESPONSE_PRINTER_H
