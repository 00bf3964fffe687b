#include "load_options.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace VornBench {
namespace {
// Clients of the stalled-primary scenario, all calling at once: eight times the device's workers.
constexpr size_t STALLED_CLIENTS = 64;

bool ParseCount(const std::string &text, size_t &value)
{
    if (text.empty() || text[0] == '-') {
        return false;
    }
    char *end = nullptr;
    errno = 0;
    unsigned long long parsed = std::strtoull(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || parsed == 0) {
        return false;
    }
    value = static_cast<size_t>(parsed);
    return true;
}

// "0" counts too: an RTT of 0 is the relay without delay, for a baseline beside the others.
bool ParseRtts(const std::string &text, std::vector<size_t> &rtts)
{
    size_t start = 0;
    while (start <= text.size()) {
        size_t comma = std::min(text.find(',', start), text.size());
        const std::string item = text.substr(start, comma - start);
        size_t value = 0;
        if (item != "0" && !ParseCount(item, value)) {
            return false;
        }
        rtts.push_back(value);
        start = comma + 1;
    }
    return true;
}

bool ParseSetting(const std::string &text, EnvSetting &setting)
{
    size_t equals = text.find('=');
    if (equals == 0 || equals == std::string::npos) {
        return false;
    }
    setting = {text.substr(0, equals), text.substr(equals + 1)};
    return true;
}
} // namespace

std::optional<LoadOptions> LoadOptions::Parse(int argc, char **argv, std::string &error, bool &help)
{
    LoadOptions options;
    help = false;
    bool countGiven = false;
    bool concurrencyGiven = false;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "-h" || option == "--help") {
            help = true;
            return std::nullopt;
        }
        if (option == "--json") {
            options.json = true;
            continue;
        }
        if (option == "--stalled-primary") {
            options.stalledPrimary = true;
            continue;
        }
        if (i + 1 >= argc) {
            error = "unknown option or missing value: " + option;
            return std::nullopt;
        }
        const std::string value = argv[++i];
        bool valid = true;
        if (option == "-n") {
            valid = ParseCount(value, options.requests);
            countGiven = true;
        } else if (option == "-c") {
            valid = ParseCount(value, options.concurrency);
            concurrencyGiven = true;
        } else if (option == "--repeat") {
            valid = ParseCount(value, options.repeat);
        } else if (option == "--rtt-ms") {
            valid = ParseRtts(value, options.rttsMs);
        } else if (option == "--bandwidth") {
            valid = ParseCount(value, options.bandwidth);
        } else if (option == "--plot") {
            options.plotFile = value;
            valid = !value.empty();
        } else if (option == "--ca-bundle") {
            options.caBundle = value;
        } else if (option == "--compare-env") {
            options.compareEnv.emplace_back();
            valid = ParseSetting(value, options.compareEnv.back());
        } else if (option == "--run") {
            options.run = value;
            valid = value == "service" || value == "bare";
        } else if (option == "--base-url") {
            options.baseUrl = value;
        } else if (option == "--ca-file") {
            options.caFile = value;
        } else {
            error = "unknown option: " + option;
            return std::nullopt;
        }
        if (!valid) {
            error = "bad value for " + option + ": " + value;
            return std::nullopt;
        }
    }
    if (options.stalledPrimary) {
        options.requests = countGiven ? options.requests : STALLED_CLIENTS;
        options.concurrency = concurrencyGiven ? options.concurrency : STALLED_CLIENTS;
    }
    if (options.stalledPrimary && (!options.rttsMs.empty() || !options.compareEnv.empty())) {
        error = "--stalled-primary runs the service alone, on loopback";
        return std::nullopt;
    }
    if (options.bandwidth > 0 && options.rttsMs.empty()) {
        error = "--bandwidth needs --rtt-ms: the limit is the relay's";
        return std::nullopt;
    }
    return options;
}

std::string LoadOptions::Usage()
{
    return "usage: vorn_load [-n N] [-c C] [--repeat K] [--json] [--ca-bundle FILE] [--compare-env NAME=VALUE]...\n"
           "                 [--rtt-ms MS[,MS...]]... [--bandwidth BYTES_PER_S] [--plot FILE.svg]\n"
           "       vorn_load --stalled-primary [-n N] [-c C] [--repeat K] [--json]\n"
           "\n"
           "Starts a local HTTPS server, sends N requests (default 1000) at concurrency C (default 16)\n"
           "through the whole service, then the same N POSTs through bare libcurl, and prints both\n"
           "side by side. Each run happens in a fresh child process of its own.\n"
           "\n"
           "  -n N                    requests per run\n"
           "  -c C                    requests in flight at once\n"
           "  --repeat K              make every run K times, in turns, and report the medians\n"
           "                          (peaks: the highest; RSS: the run that grew the most)\n"
           "  --json                  print the figures as one JSON object\n"
           "  --ca-bundle FILE        append FILE (e.g. /etc/ssl/certs/ca-certificates.crt) to the\n"
           "                          test CA in the CA file every request names\n"
           "  --compare-env NAME=VAL  one more service run with NAME=VAL in its environment; the\n"
           "                          plain service run then has NAME unset (repeatable)\n"
           "  --rtt-ms MS[,MS...]     put a latency relay adding MS ms of round-trip time (0: none)\n"
           "                          between every run and the server; one comparison per RTT\n"
           "                          (repeatable)\n"
           "  --bandwidth B           the relay also limits each direction to B bytes/s\n"
           "  --plot FILE.svg         draw every run's latency distribution (CDF, log time axis)\n"
           "  --stalled-primary       every request names first a URL that answers after 3 s, then\n"
           "                          one that answers at once; the service alone, its runtime at\n"
           "                          8 workers, 64 requests all at once by default; reports the time\n"
           "                          to the first response against the target p99 <= 1.5 s\n"
           "\n"
           "Exits 1 when any request went unanswered or failed, 2 when the tool could not run.\n";
}
} // namespace VornBench
