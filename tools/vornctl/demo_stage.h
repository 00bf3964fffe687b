#ifndef VORN_TOOLS_VORNCTL_DEMO_STAGE_H
#define VORN_TOOLS_VORNCTL_DEMO_STAGE_H

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "certificate_authority.h"
#include "latency_relay.h"
#include "local_https_server.h"
#include "temp_dir.h"

namespace Vornctl {
// The two endpoints of the demo's routing service, in the order the configuration names them.
enum class DemoEndpoint { STALLING, ANSWERING };

// One request as the demo's server saw it arrive.
struct ServerVisit {
    DemoEndpoint endpoint;
    std::string url; // as requested, with the query text
    std::chrono::steady_clock::time_point at;
};

// Everything the demo sets up and removes again: a temporary folder with a CA and a server
// certificate, a local HTTPS stand-in of the routing service on 127.0.0.1 whose first endpoint
// stalls and whose second answers at once, and a service root whose configuration names both.
class DemoStage {
public:
    static constexpr std::chrono::milliseconds STALL {2500};
    static constexpr char QUERY_ENDPOINT[] = "/v1/service-urls/query";

    // "primary" or "fallback": the path prefix of the endpoint, and the "endpoint" its answers carry.
    static std::string Name(DemoEndpoint endpoint);

    // Makes the temporary folder; throws std::runtime_error when it cannot.
    DemoStage() = default;
    DemoStage(const DemoStage &) = delete;
    DemoStage &operator=(const DemoStage &) = delete;

    // Makes the certificates, starts the server and writes the configuration. False, with
    // `error` set to one line, when something cannot be set up.
    // With an RTT above 0 the service reaches the server only through a latency relay.
    bool SetUp(std::string &error, std::chrono::milliseconds rtt);
    std::chrono::milliseconds Rtt() const;

    const std::string &Folder() const;
    std::string RootFolder() const; // the folder to run the service in
    std::string CaFile() const;
    std::string LogFile() const; // where the service's log goes, out of the demo's output
    std::string ServerUrl() const;
    std::string BaseUrl(DemoEndpoint endpoint) const; // as the server configuration names it
    std::string Path(DemoEndpoint endpoint) const; // the server path the service requests
    std::vector<ServerVisit> Visits() const;

private:
    void Serve(DemoEndpoint endpoint);
    void WriteConfiguration() const;

    VornTestbed::TempDir folder_;
    VornTestbed::CertificateFiles certificates_;
    mutable std::mutex mutex_;
    std::vector<ServerVisit> visits_;
    // Last, so that it stops (and its handlers end) before the members they use go.
    std::unique_ptr<VornTestbed::LocalHttpsServer> server_;
    std::chrono::milliseconds rtt_ {0};
    // Stops first: it only forwards to the server.
    std::unique_ptr<VornTestbed::LatencyRelay> relay_;
};
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_DEMO_STAGE_H
