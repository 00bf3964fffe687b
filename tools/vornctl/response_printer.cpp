#include "response_printer.h"

#include <utility>

namespace Vornctl {
ResponsePrinter::ResponsePrinter(std::FILE *out, std::string prefix) : out_(out), prefix_(std::move(prefix)) {}

void ResponsePrinter::Print(const std::string &response)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) {
        return;
    }
    std::fwrite(prefix_.data(), 1, prefix_.size(), out_);
    std::fwrite(response.data(), 1, response.size(), out_);
    std::fputc('\n', out_);
    std::fflush(out_);
    printed_.push_back(response);
}

std::vector<std::string> ResponsePrinter::Close()
{
    std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    return printed_;
}
} // namespace Vornctl
