#include "demo_stage.h"

#include <nlohmann/json.hpp>

namespace Vornctl {
namespace {
constexpr char CONFIG_DIR[] = "root/system/etc/tarnix/vorn_depot/";

std::string Prefix(DemoEndpoint endpoint)
{
    return "/" + DemoStage::Name(endpoint);
}

// What the routing service tells a client: where each service it asked for lives.
std::string RoutingAnswer(DemoEndpoint endpoint)
{
    nlohmann::json answer = {
        {"endpoint", DemoStage::Name(endpoint)},
        {"serviceUrls", {{"weather", "https://weather.example.com/v2"}}},
    };
    return answer.dump();
}
} // namespace

std::string DemoStage::Name(DemoEndpoint endpoint)
{
    return endpoint == DemoEndpoint::STALLING ? "primary" : "fallback";
}

bool DemoStage::SetUp(std::string &error, std::chrono::milliseconds rtt)
{
    auto certificates = VornTestbed::MakeCertificateFiles(folder_.Path("pki"));
    if (!certificates) {
        error = "cannot make the demo's certificates";
        return false;
    }
    certificates_ = *certificates;
    server_ = std::make_unique<VornTestbed::LocalHttpsServer>(VornTestbed::ServerOptions::Tls(certificates_));
    if (!server_->Start()) {
        error = "cannot start the local HTTPS server";
        return false;
    }
    rtt_ = rtt;
    if (rtt.count() > 0) {
        relay_ = std::make_unique<VornTestbed::LatencyRelay>(server_->Port(), VornTestbed::PathSettings {rtt, 0});
        if (!relay_->Start()) {
            error = "cannot start the latency relay";
            return false;
        }
    }
    Serve(DemoEndpoint::STALLING);
    Serve(DemoEndpoint::ANSWERING);
    WriteConfiguration();
    return true;
}

void DemoStage::Serve(DemoEndpoint endpoint)
{
    server_->Handle(Path(endpoint), [this, endpoint](const VornTestbed::HttpRequest &request) {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            std::string url = ServerUrl() + request.path + (request.query.empty() ? "" : "?" + request.query);
            visits_.push_back({endpoint, url, std::chrono::steady_clock::now()});
        }
        VornTestbed::HttpResponse response = VornTestbed::HttpResponse::Text(200, RoutingAnswer(endpoint));
        response.headerLines.push_back("Content-Type: application/json");
        if (endpoint == DemoEndpoint::STALLING) {
            response.delay = STALL;
        }
        return response;
    });
}

void DemoStage::WriteConfiguration() const
{
    nlohmann::json serverConfig = {{"qel_server",
        {
            {"qel_base_url", {BaseUrl(DemoEndpoint::STALLING), BaseUrl(DemoEndpoint::ANSWERING)}},
            {"qel_query_endpoint", QUERY_ENDPOINT},
            {"qel_query_timeout", 9000},
        }}};
    folder_.WriteFile(std::string(CONFIG_DIR) + "qel_sdk_server_config.json", serverConfig.dump(4) + "\n");
    nlohmann::json omsaConfig = {{"collect_url", ServerUrl() + "/collect"}};
    folder_.WriteFile(std::string(CONFIG_DIR) + "omsa_config.json", omsaConfig.dump(4) + "\n");
}

const std::string &DemoStage::Folder() const
{
    return folder_.Path();
}

std::string DemoStage::RootFolder() const
{
    return folder_.Path("root");
}

std::string DemoStage::CaFile() const
{
    return certificates_.caFile;
}

std::string DemoStage::LogFile() const
{
    return folder_.Path("service.log");
}

std::string DemoStage::ServerUrl() const
{
    // The relay is plain TCP on 127.0.0.1, so the certificate still fits the URL.
    return relay_ != nullptr ? "https://127.0.0.1:" + std::to_string(relay_->Port()) : server_->BaseUrl();
}

std::chrono::milliseconds DemoStage::Rtt() const
{
    return rtt_;
}

std::string DemoStage::BaseUrl(DemoEndpoint endpoint) const
{
    return ServerUrl() + Prefix(endpoint);
}

std::string DemoStage::Path(DemoEndpoint endpoint) const
{
    return Prefix(endpoint) + QUERY_ENDPOINT;
}

std::vector<ServerVisit> DemoStage::Visits() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return visits_;
}
} // namespace Vornctl
