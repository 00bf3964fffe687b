#ifndef VORN_BENCH_LOAD_OPTIONS_H
#define VORN_BENCH_LOAD_OPTIONS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace VornBench {
// One environment variable set for a variant of the service run.
struct EnvSetting {
    std::string name;
    std::string value;

    std::string Label() const { return name + "=" + value; }
};

// vorn_load's command line.
struct LoadOptions {
    size_t requests = 1000;
    size_t concurrency = 16;
    bool json = false;
    std::string caBundle; // appended to the test CA in the CA file of every run
    std::vector<EnvSetting> compareEnv; // one extra service run per setting
    size_t repeat = 1; // runs of each kind, taken in turns
    std::vector<size_t> rttsMs; // one comparison per RTT through a latency relay; none: direct
    size_t bandwidth = 0; // bytes/s per direction through the relay; 0: no limit
    std::string plotFile; // SVG of every run's latency distribution
    // The stalled-primary scenario: every request names a URL that stalls, then one that answers
    // at once; service runs only, 64 requests all at once unless -n and -c say otherwise.
    bool stalledPrimary = false;

    // Given by the tool to the child process that makes one run ("service" or "bare").
    std::string run;
    std::string baseUrl;
    std::string caFile;

    // Null with `error` set when the line is wrong; `help` set when usage was asked for.
    static std::optional<LoadOptions> Parse(int argc, char **argv, std::string &error, bool &help);
    static std::string Usage();
};
} // namespace VornBench

#endif // VORN_BENCH_LOAD_OPTIONS_H
