#include "command_line.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>

namespace Vornctl {
namespace {
constexpr uint32_t REQUEST_CODE = 1;
constexpr uint32_t EVENT_CODE = 2;
constexpr std::chrono::milliseconds REQUEST_WAIT {20000};
constexpr std::chrono::milliseconds EVENT_WAIT {1000};

std::optional<unsigned long long> ParseUnsigned(const std::string &text, unsigned long long max)
{
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    errno = 0;
    unsigned long long value = std::strtoull(text.c_str(), nullptr, 10);
    if (errno != 0 || value > max) {
        return std::nullopt;
    }
    return value;
}

std::optional<CallerKind> ParseCaller(const std::string &text)
{
    if (text == "native") {
        return CallerKind::NATIVE;
    }
    if (text == "system-app") {
        return CallerKind::SYSTEM_APP;
    }
    if (text == "app") {
        return CallerKind::APP;
    }
    return std::nullopt;
}

// Walks the arguments of `request` and `event`; stops at the first problem.
class OptionParser {
public:
    OptionParser(const std::vector<std::string> &args, CommandLine &line) : args_(args), line_(line) {}

    std::string Parse()
    {
        std::vector<std::string> payloads;
        std::optional<uint32_t> code;
        std::optional<std::chrono::milliseconds> wait;
        for (index_ = 1; index_ < args_.size() && error_.empty(); ++index_) {
            const std::string &arg = args_[index_];
            if (arg.size() < 3 || arg.compare(0, 2, "--") != 0) {
                if (!payloads.empty() && line_.command != Command::REQUEST) {
                    return "unexpected argument '" + arg + "': give one " + PayloadName();
                }
                payloads.push_back(arg);
                continue;
            }
            ParseOption(arg, code, wait);
        }
        if (!error_.empty()) {
            return error_;
        }
        if (payloads.empty()) {
            return "missing " + PayloadName() + " (JSON text, @FILE or -)";
        }
        if (std::count(payloads.begin(), payloads.end(), "-") > 1) {
            return "standard input (-) can be read for one " + PayloadName() + " only";
        }
        bool request = line_.command == Command::REQUEST;
        line_.payloads = payloads;
        line_.code = code.value_or(request ? REQUEST_CODE : EVENT_CODE);
        line_.wait = wait.value_or(request ? REQUEST_WAIT : EVENT_WAIT);
        return {};
    }

private:
    std::string PayloadName() const { return line_.command == Command::REQUEST ? "REQUEST" : "EVENT"; }

    // Accepts "--name value" and "--name=value".
    std::optional<std::string> Value(const std::string &name, const std::optional<std::string> &inlineValue)
    {
        if (inlineValue) {
            return inlineValue;
        }
        if (index_ + 1 >= args_.size()) {
            error_ = name + " needs a value";
            return std::nullopt;
        }
        return args_[++index_];
    }

    std::optional<unsigned long long> Number(const std::string &name, const std::optional<std::string> &inlineValue,
        unsigned long long max)
    {
        std::optional<std::string> text = Value(name, inlineValue);
        if (!text) {
            return std::nullopt;
        }
        std::optional<unsigned long long> value = ParseUnsigned(*text, max);
        if (!value) {
            error_ = name + " needs a number from 0 to " + std::to_string(max) + ", not '" + *text + "'";
        }
        return value;
    }

    void RequestOnly(const std::string &name)
    {
        if (line_.command != Command::REQUEST) {
            error_ = name + " applies to request only";
        }
    }

    void ParseOption(const std::string &arg, std::optional<uint32_t> &code,
        std::optional<std::chrono::milliseconds> &wait)
    {
        size_t equals = arg.find('=');
        std::string name = arg.substr(0, equals);
        std::optional<std::string> inlineValue;
        if (equals != std::string::npos) {
            inlineValue = arg.substr(equals + 1);
        }
        bool isFlag = name == "--no-callback" || name == "--all" || name == "--dump";
        if (isFlag && inlineValue) {
            error_ = name + " takes no value";
            return;
        }
        if (name == "--root") {
            line_.root = Value(name, inlineValue);
        } else if (name == "--library") {
            line_.library = Value(name, inlineValue);
        } else if (name == "--descriptor") {
            line_.descriptor = Value(name, inlineValue);
        } else if (name == "--caller") {
            ParseCallerOption(name, inlineValue);
        } else if (name == "--uid") {
            if (auto uid = Number(name, inlineValue, INT_MAX)) {
                line_.uid = static_cast<pid_t>(*uid);
            }
        } else if (name == "--code") {
            if (auto value = Number(name, inlineValue, UINT32_MAX)) {
                code = static_cast<uint32_t>(*value);
            }
        } else if (name == "--wait-ms") {
            if (auto value = Number(name, inlineValue, INT_MAX)) {
                wait = std::chrono::milliseconds(*value);
            }
        } else if (name == "--no-callback") {
            RequestOnly(name);
            line_.noCallback = true;
        } else if (name == "--all") {
            RequestOnly(name);
            line_.collectAll = true;
        } else if (name == "--dump") {
            RequestOnly(name);
            line_.dumpAfter = true;
        } else {
            error_ = "unknown option " + name;
        }
    }

    void ParseCallerOption(const std::string &name, const std::optional<std::string> &inlineValue)
    {
        std::optional<std::string> text = Value(name, inlineValue);
        if (!text) {
            return;
        }
        std::optional<CallerKind> kind = ParseCaller(*text);
        if (!kind) {
            error_ = name + " must be native, system-app or app, not '" + *text + "'";
            return;
        }
        line_.caller = *kind;
    }

    const std::vector<std::string> &args_;
    CommandLine &line_;
    size_t index_ = 0;
    std::string error_;
};

// `dump [--root DIR] [--library PATH] [ARG...]`: the options come first; the first argument that
// is neither, and everything after it, goes to the service's dump as it is (so "-h" is the
// service's option, not the tool's).
std::string ParseDump(const std::vector<std::string> &args, CommandLine &line)
{
    size_t index = 1;
    for (; index < args.size(); ++index) {
        const std::string &arg = args[index];
        std::optional<std::string> *target = nullptr;
        if (arg == "--root") {
            target = &line.root;
        } else if (arg == "--library") {
            target = &line.library;
        } else {
            break;
        }
        if (index + 1 >= args.size()) {
            return arg + " needs a value";
        }
        *target = args[++index];
    }
    line.dumpArgs.assign(args.begin() + static_cast<std::ptrdiff_t>(index), args.end());
    return {};
}
} // namespace

ParsedCommandLine ParseCommandLine(const std::vector<std::string> &args)
{
    ParsedCommandLine parsed;
    if (args.empty()) {
        parsed.error = "missing command: request, event, dump or demo";
        return parsed;
    }
    CommandLine line;
    line.uid = static_cast<pid_t>(getuid());
    const std::string &command = args[0];
    if (command == "help" || command == "--help" || command == "-h") {
        parsed.commandLine = line;
        return parsed;
    }
    if (command == "demo") {
        constexpr unsigned long long maxRttMs = 10000;
        std::optional<unsigned long long> rtt;
        if (args.size() == 3 && args[1] == "--rtt-ms") {
            rtt = ParseUnsigned(args[2], maxRttMs);
        }
        if (args.size() > 1 && !rtt) {
            parsed.error = "demo takes only --rtt-ms N (0 to 10000)";
            return parsed;
        }
        line.command = Command::DEMO;
        line.demoRtt = std::chrono::milliseconds(rtt.value_or(0));
        parsed.commandLine = line;
        return parsed;
    }
    if (command == "dump") {
        line.command = Command::DUMP;
        parsed.error = ParseDump(args, line);
        if (parsed.error.empty()) {
            parsed.commandLine = line;
        }
        return parsed;
    }
    if (command != "request" && command != "event") {
        parsed.error = "unknown command '" + command + "': use request, event, dump or demo";
        return parsed;
    }
    line.command = command == "request" ? Command::REQUEST : Command::EVENT;
    parsed.error = OptionParser(args, line).Parse();
    if (parsed.error.empty()) {
        parsed.commandLine = line;
    }
    return parsed;
}

const char *UsageText()
{
    return R"(usage:
  vornctl request [options] REQUEST...  REQUEST: JSON text, @FILE, or - (standard input);
                                        several are sent one after another to the same service
  vornctl event   [options] EVENT     EVENT: {"eventId":..,"content":..} text, @FILE or -
  vornctl dump [--root DIR] [--library PATH] [ARG...]
                                      the service's dump, as the platform's dump tool asks for
                                      it; ARGs go to the service (-h lists its options)
  vornctl demo [--rtt-ms N]           N: round-trip time in ms a relay adds in front of the
                                      demo's server; the demo then sends a second request

options of request and event:
  --root DIR         change to DIR before loading the service, so its relative configuration
                     paths (system/etc/tarnix/vorn_depot/...) resolve under DIR
  --caller KIND      native (default), system-app or app: the identity the call carries
  --uid N            the calling uid (default: the tool's own uid)
  --descriptor TEXT  the interface token to write (default: the service's descriptor)
  --code N           the transaction code (default 1 for request, 2 for event)
  --no-callback      request: write a null remote object instead of the callback
  --all              request: keep collecting responses until the task runtime is idle or
                     --wait-ms has passed; without it the tool finishes at the first response
  --dump             request: after the last request, print the service's dump to standard
                     output, after the response lines
  --wait-ms N        how long to wait after the call returned (request 20000, event 1000);
                     with several requests, for each of them
  --library PATH     the service library (default: the one built beside the tool)

standard output: one line per response, as the callback received it, in arrival order. With
several requests each line starts with the request's number (1 for the first) and a tab, and
the tool waits for each request as for a single one before it sends the next.
standard error: the service's log, then "reply: N" (or "reply: none") and "result: N", for
several requests once per request in order, each led by its number and a tab; dump: "result: N".
exit status: request 0 a response with code 200, 1 responses but none with 200, 2 no response;
3 the transaction result was not 0; several requests: 0 if each exited 0, else the highest of
their statuses; event 0 result 0, else 3; dump 0 the dump was written, else 3 (request --dump
too); 64 usage error; 69 the service library could not be loaded or started.
)";
}
} // namespace Vornctl
