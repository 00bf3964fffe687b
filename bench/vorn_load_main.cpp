// vorn_load: the service end to end against bare libcurl, on one local HTTPS server. See
// LoadOptions::Usage and the README's Benchmarks section.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "bare_load.h"
#include "bench_process.h"
#include "bench_request.h"
#include "certificate_authority.h"
#include "child_run.h"
#include "load_options.h"
#include "load_report.h"
#include "local_https_server.h"
#include "service_load.h"
#include "temp_dir.h"

namespace {
using namespace VornBench;

constexpr int EXIT_SERVED = 0;
constexpr int EXIT_UNSERVED = 1;
constexpr int EXIT_BROKEN = 2;

// One kind of run: the service as it is, the service with a variable set, or bare libcurl.
struct RunKind {
    std::string name;
    std::string run;  // what the child runs: "service" or "bare"
    std::vector<EnvChange> env;
};

// The child's side: one run, its result as one JSON line on standard output.
[[noreturn]] void RunOne(const LoadOptions &options)
{
    LoadTarget target {options.baseUrl, options.caFile, options.requests, options.concurrency};
    RunResult result;
    if (options.run == "bare") {
        result = BareLoad(target).Run();
    } else {
        std::string error;
        OHOS::sptr<OHOS::IRemoteObject> service = ServiceLoad::StartService(error);
        if (service == nullptr) {
            std::cerr << "vorn_load: " << error << "\n";
            std::exit(EXIT_BROKEN);
        }
        result = ServiceLoad(service, target).Run();
    }
    std::cout << result.ToJson().dump() << std::endl;
    // The service's pools are never torn down and may still hold requests given up on; leave
    // without running static destructors underneath them.
    std::_Exit(result.Unanswered() == 0 && result.failed == 0 ? EXIT_SERVED : EXIT_UNSERVED);
}

std::optional<std::string> WriteCaFile(const VornTestbed::TempDir &dir, const std::string &testCa,
    const std::string &bundle)
{
    if (bundle.empty()) {
        return testCa;
    }
    std::ifstream ca(testCa);
    std::ifstream extra(bundle);
    if (!ca || !extra) {
        std::cerr << "vorn_load: cannot read " << (ca ? bundle : testCa) << "\n";
        return std::nullopt;
    }
    const std::string path = dir.Path("ca-bundle.pem");
    std::ofstream out(path);
    out << ca.rdbuf() << "\n" << extra.rdbuf();
    return out ? std::optional<std::string>(path) : std::nullopt;
}

std::optional<RunResult> RunChild(const std::string &name, const std::vector<std::string> &arguments,
    const std::vector<EnvChange> &env)
{
    std::cerr << "vorn_load: running " << name << " ...\n";
    std::string error;
    std::optional<RunResult> result = RunInChild(arguments, env, error);
    if (!result) {
        std::cerr << "vorn_load: " << name << ": " << error << "\n";
        return std::nullopt;
    }
    result->name = name;
    return result;
}

int Compare(const LoadOptions &options)
{
    VornTestbed::TempDir dir;
    std::optional<VornTestbed::CertificateFiles> files = VornTestbed::MakeCertificateFiles(dir.Path("pki"));
    if (!files) {
        std::cerr << "vorn_load: cannot make certificates\n";
        return EXIT_BROKEN;
    }
    std::optional<std::string> caFile = WriteCaFile(dir, files->caFile, options.caBundle);
    if (!caFile) {
        return EXIT_BROKEN;
    }
    VornTestbed::LocalHttpsServer server(VornTestbed::ServerOptions::Tls(*files));
    server.Respond(QUERY_PATH, QueryResponse());
    if (!server.Start()) {
        std::cerr << "vorn_load: cannot start the local HTTPS server\n";
        return EXIT_BROKEN;
    }
    const std::vector<std::string> common {"--base-url", server.BaseUrl(), "--ca-file", *caFile, "-n",
        std::to_string(options.requests), "-c", std::to_string(options.concurrency)};
    auto arguments = [&common](const std::string &run) {
        std::vector<std::string> all {"--run", run};
        all.insert(all.end(), common.begin(), common.end());
        return all;
    };

    // The plain service run has every compared variable unset; each variant sets one of them.
    std::vector<EnvChange> unsetAll;
    for (const EnvSetting &setting : options.compareEnv) {
        unsetAll.push_back({setting.name, std::nullopt});
    }
    std::vector<RunKind> kinds {{"service", "service", unsetAll}};
    for (const EnvSetting &setting : options.compareEnv) {
        std::vector<EnvChange> env = unsetAll;
        env.push_back({setting.name, setting.value});
        kinds.push_back({"service[" + setting.Label() + "]", "service", env});
    }
    kinds.push_back({"bare", "bare", {}});

    // In turns, so that a machine busy with other work for a while weighs on every kind alike.
    std::vector<std::vector<RunResult>> results(kinds.size());
    for (size_t repetition = 0; repetition < options.repeat; ++repetition) {
        for (size_t i = 0; i < kinds.size(); ++i) {
            std::optional<RunResult> result = RunChild(kinds[i].name, arguments(kinds[i].run), kinds[i].env);
            if (!result) {
                return EXIT_BROKEN;
            }
            results[i].push_back(*result);
        }
    }
    std::vector<RunResult> serviceRuns;
    for (size_t i = 0; i + 1 < kinds.size(); ++i) {
        serviceRuns.push_back(RunResult::Combine(results[i]));
    }
    RunResult bare = RunResult::Combine(results.back());

    LoadReport report(server.BaseUrl() + QUERY_PATH, std::move(serviceRuns), std::move(bare));
    if (options.json) {
        std::cout << report.ToJson().dump(2) << std::endl;
    } else {
        report.PrintTable(std::cout);
    }
    return report.AllServed() ? EXIT_SERVED : EXIT_UNSERVED;
}
} // namespace

int main(int argc, char **argv)
{
    VornBench::PrepareProcess();
    std::string error;
    bool help = false;
    std::optional<LoadOptions> options = LoadOptions::Parse(argc, argv, error, help);
    if (!options && help) {
        std::cout << LoadOptions::Usage();
        return EXIT_SERVED;
    }
    if (!options) {
        std::cerr << "vorn_load: " << error << "\n" << LoadOptions::Usage();
        return EXIT_BROKEN;
    }
    if (!options->run.empty()) {
        RunOne(*options);
    }
    return Compare(*options);
}
