#include "dump_command.h"

#include <unistd.h>

#include <cerrno>
#include <memory>

#include "exit_status.h"
#include "string_ex.h"

namespace Vornctl {
namespace {
using File = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

// Copies everything from `in`'s start to `out`.
bool CopyAll(std::FILE *in, std::FILE *out)
{
    if (std::fseek(in, 0, SEEK_SET) != 0) {
        return false;
    }
    char buffer[4096];
    size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof(buffer), in)) > 0) {
        if (std::fwrite(buffer, 1, n, out) != n) {
            return false;
        }
    }
    std::fflush(out);
    return std::ferror(in) == 0;
}
} // namespace

CommandOutcome RunDump(const ServiceSession &session, const std::vector<std::string> &args, std::FILE *out)
{
    std::vector<std::u16string> wideArgs;
    for (const std::string &arg : args) {
        wideArgs.push_back(OHOS::Str8ToStr16(arg));
    }
    CommandOutcome outcome;
    outcome.exitStatus = EXIT_CALL_FAILED;
    // A temporary file rather than a pipe: the service writes the whole dump before the call
    // returns, and a pipe's buffer would bound how much it may write.
    File text(std::tmpfile(), &std::fclose);
    if (text == nullptr) {
        outcome.call.result = errno;
        return outcome;
    }
    outcome.call.result = session.Dump(fileno(text.get()), wideArgs);
    if (outcome.call.result == 0 && CopyAll(text.get(), out)) {
        outcome.exitStatus = EXIT_SUCCESS_RESPONSE;
    }
    return outcome;
}
} // namespace Vornctl
