// vorn_load: the service end to end against bare libcurl, on one local HTTPS server. See
// LoadOptions::Usage and the README's Benchmarks section.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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
#include "latency_plot.h"
#include "latency_relay.h"
#include "load_options.h"
#include "load_report.h"
#include "local_https_server.h"
#include "service_ability.h"
#include "service_load.h"
#include "stall_report.h"
#include "temp_dir.h"

namespace {
using namespace VornBench;

constexpr int EXIT_SERVED = 0;
constexpr int EXIT_UNSERVED = 1;
constexpr int EXIT_BROKEN = 2;

// One kind of run: the service as it is, the service with a variable set, or bare libcurl.
struct RunKind {
    std::string name;
    std::string run; // what the child runs: "service" or "bare"
    std::vector<EnvChange> env;
};

// The child's side: one run, its result as one JSON line on standard output.
[[noreturn]] void RunOne(const LoadOptions &options)
{
    LoadTarget target {options.baseUrl, options.caFile, options.requests, options.concurrency, options.stalledPrimary};
    RunResult result;
    if (options.run == "bare") {
        result = BareLoad(target).Run();
    } else {
        std::string error;
        OHOS::sptr<OHOS::IRemoteObject> service = VornTools::StartServiceAbility(error);
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

// The runs of every kind against one base URL: the server itself, or a relay in front of it.
std::optional<LoadReport> CompareAt(const LoadOptions &options, const std::string &baseUrl, const std::string &caFile,
    const std::string &endpoint)
{
    const std::vector<std::string> common {"--base-url", baseUrl, "--ca-file", caFile, "-n",
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
                return std::nullopt;
            }
            results[i].push_back(*result);
        }
    }
    std::vector<RunResult> serviceRuns;
    for (size_t i = 0; i + 1 < kinds.size(); ++i) {
        serviceRuns.push_back(RunResult::Combine(results[i]));
    }
    return LoadReport(endpoint, std::move(serviceRuns), RunResult::Combine(results.back()));
}

// A curve per run, named for the plot's legend.
PlotPanel PanelOf(const std::string &title, double rttMs, const LoadReport &report)
{
    PlotPanel panel {title, rttMs, {}};
    for (const RunResult &run : report.Runs()) {
        std::string label = run.name == "bare" ? "bare libcurl, fresh handle per request" : run.name;
        if (label.compare(0, std::strlen("service["), "service[") == 0) {
            label = "service, " + label.substr(std::strlen("service["), label.size() - std::strlen("service[") - 1);
        }
        panel.curves.push_back({label, run.latencyMs.percentiles});
    }
    return panel;
}

// The stalled-primary scenario: service runs only, since bare libcurl has no race to fall back on.
int StalledPrimary(const LoadOptions &options, const std::string &baseUrl, const std::string &caFile)
{
    const std::vector<std::string> arguments {"--run", "service", "--stalled-primary", "--base-url", baseUrl,
        "--ca-file", caFile, "-n", std::to_string(options.requests), "-c", std::to_string(options.concurrency)};
    // The device's limit, set whatever the caller's environment says.
    const std::vector<EnvChange> env {{"VORN_FFRT_WORKERS", std::string("8")}};
    std::vector<RunResult> runs;
    for (size_t repetition = 0; repetition < options.repeat; ++repetition) {
        std::optional<RunResult> result = RunChild("service, stalled primary", arguments, env);
        if (!result) {
            return EXIT_BROKEN;
        }
        runs.push_back(*result);
    }
    const StallReport report(RunResult::Combine(runs));
    if (options.json) {
        std::cout << report.ToJson().dump(2) << std::endl;
    } else {
        report.PrintTable(std::cout);
    }
    return report.AllServed() ? EXIT_SERVED : EXIT_UNSERVED;
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
    server.Respond(STALLED_PATH, StalledResponse());
    if (!server.Start()) {
        std::cerr << "vorn_load: cannot start the local HTTPS server\n";
        return EXIT_BROKEN;
    }
    if (options.stalledPrimary) {
        return StalledPrimary(options, server.BaseUrl(), *caFile);
    }

    std::vector<LoadReport> reports;
    std::vector<PlotPanel> panels;
    nlohmann::json relayed = nlohmann::json::array();
    if (options.rttsMs.empty()) {
        std::optional<LoadReport> report = CompareAt(options, server.BaseUrl(), *caFile, server.BaseUrl() + QUERY_PATH);
        if (!report) {
            return EXIT_BROKEN;
        }
        panels.push_back(PanelOf("loopback, no relay", 0, *report));
        reports.push_back(std::move(*report));
    }
    for (size_t rtt : options.rttsMs) {
        // The relay is plain TCP on 127.0.0.1: the URL names the same host, so TLS still verifies.
        VornTestbed::LatencyRelay relay(server.Port(),
            VornTestbed::PathSettings {std::chrono::milliseconds(rtt), options.bandwidth});
        if (!relay.Start()) {
            std::cerr << "vorn_load: cannot start the latency relay\n";
            return EXIT_BROKEN;
        }
        const std::string baseUrl = "https://127.0.0.1:" + std::to_string(relay.Port());
        std::string endpoint =
            server.BaseUrl() + QUERY_PATH + " through a relay adding " + std::to_string(rtt) + " ms RTT";
        if (options.bandwidth > 0) {
            endpoint += " and limiting each direction to " + std::to_string(options.bandwidth) + " bytes/s";
        }
        std::cerr << "vorn_load: " << endpoint << "\n";
        std::optional<LoadReport> report = CompareAt(options, baseUrl, *caFile, endpoint);
        if (!report) {
            return EXIT_BROKEN;
        }
        nlohmann::json json = report->ToJson();
        json["rtt_ms"] = rtt;
        json["relay_connections"] = relay.Connections();
        relayed.push_back(std::move(json));
        panels.push_back(PanelOf("RTT " + std::to_string(rtt) + " ms", static_cast<double>(rtt), *report));
        reports.push_back(std::move(*report));
    }

    if (options.json && options.rttsMs.empty()) {
        std::cout << reports.front().ToJson().dump(2) << std::endl;
    } else if (options.json) {
        std::cout << nlohmann::json {{"reports", relayed}}.dump(2) << std::endl;
    } else {
        for (size_t i = 0; i < reports.size(); ++i) {
            std::cout << (i > 0 ? "\n" : "");
            reports[i].PrintTable(std::cout);
        }
    }
    const std::string title = "vorn_load: " + std::to_string(options.requests) + " requests per run, " +
        std::to_string(options.concurrency) + " at a time" +
        (options.repeat > 1 ? ", median of " + std::to_string(options.repeat) + " runs" : std::string());
    if (!options.plotFile.empty() && !LatencyPlot(title, std::move(panels)).Write(options.plotFile)) {
        std::cerr << "vorn_load: cannot write " << options.plotFile << "\n";
        return EXIT_BROKEN;
    }
    bool served = true;
    for (const LoadReport &report : reports) {
        served = served && report.AllServed();
    }
    return served ? EXIT_SERVED : EXIT_UNSERVED;
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
