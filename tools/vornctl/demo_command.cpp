#include "demo_command.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <mutex>
#include <system_error>
#include <vector>

#include <nlohmann/json.hpp>

#include "demo_stage.h"
#include "dump_command.h"
#include "exit_status.h"
#include "ffrt_host.h"
#include "i_vorn_sa_interface.h"
#include "response_collector.h"
#include "service_session.h"

namespace Vornctl {
namespace {
using Clock = std::chrono::steady_clock;

constexpr size_t EXPECTED_RESPONSES = 2;
constexpr std::chrono::seconds RESPONSE_WAIT {8};
constexpr std::chrono::seconds SETTLE_WAIT {3};
constexpr int SUCCESS_CODE = 200;
constexpr char INDENT[] = "            ";

// libcurl would honour these too; the demo talks to 127.0.0.1 only.
constexpr const char *PROXY_VARIABLES[] = {"VORN_DEFAULT_HTTP_PROXY", "http_proxy", "https_proxy", "HTTP_PROXY",
    "HTTPS_PROXY", "all_proxy", "ALL_PROXY"};

struct Arrival {
    std::string text;
    Clock::time_point at;
};

// Filled from the service's pool threads while the demo waits.
class Arrivals {
public:
    void Add(const std::string &text)
    {
        std::lock_guard<std::mutex> lock(mutex_);
        arrivals_.push_back({text, Clock::now()});
    }
    std::vector<Arrival> Get() const
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return arrivals_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<Arrival> arrivals_;
};

// The demo's story in the order things happened; `at` orders it.
struct Moment {
    Clock::time_point at;
    std::string line;
    std::string note;
};

long long Milliseconds(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(to - from).count();
}

nlohmann::json ParseOrNull(const std::string &text)
{
    return nlohmann::json::parse(text, nullptr, false);
}

int64_t CodeOf(const nlohmann::json &response)
{
    return response.is_object() && response.contains("code") && response["code"].is_number_integer()
        ? response["code"].get<int64_t>()
        : 0;
}

// The routing endpoint that answered, as its body says ("primary" or "fallback").
std::string EndpointOf(const nlohmann::json &response)
{
    if (!response.is_object() || !response.contains("body") || !response["body"].is_string()) {
        return {};
    }
    nlohmann::json body = ParseOrNull(response["body"].get<std::string>());
    return body.is_object() && body.contains("endpoint") && body["endpoint"].is_string()
        ? body["endpoint"].get<std::string>()
        : std::string();
}

// Without base URLs the service takes them from its server configuration.
std::string RequestText(const DemoStage &stage, const std::vector<std::string> &baseUrls = {})
{
    nlohmann::json request = {
        {"appVersion", "1.0.0"},
        {"caFile", stage.CaFile()},
        {"queryHeaders", "appId=demo"},
        {"requestHeaders", {"Accept: application/json"}},
        {"requestBody", {"weather"}},
    };
    if (!baseUrls.empty()) {
        request["baseUrls"] = baseUrls;
    }
    return request.dump();
}

void UnsetProxyVariables()
{
    for (const char *name : PROXY_VARIABLES) {
        unsetenv(name);
    }
}

void PrintSetUp(const DemoStage &stage, const std::string &libraryPath)
{
    std::printf("Vorn demo: one request through the whole service, on 127.0.0.1 only.\n\n");
    std::printf("Set up in %s (removed at the end):\n", stage.Folder().c_str());
    std::printf("  a CA and a server certificate made for this run\n");
    std::printf("  a local HTTPS stand-in of the routing service at %s with two endpoints:\n",
        stage.ServerUrl().c_str());
    std::printf("    %-34s stalls for %lld ms, then answers\n", stage.Path(DemoEndpoint::STALLING).c_str(),
        static_cast<long long>(DemoStage::STALL.count()));
    std::printf("    %-34s answers at once\n", stage.Path(DemoEndpoint::ANSWERING).c_str());
    std::printf("  root/system/etc/tarnix/vorn_depot/qel_sdk_server_config.json, naming in this order\n");
    std::printf("    %s\n    %s\n    with the query endpoint %s\n", stage.BaseUrl(DemoEndpoint::STALLING).c_str(),
        stage.BaseUrl(DemoEndpoint::ANSWERING).c_str(), DemoStage::QUERY_ENDPOINT);
    if (stage.Rtt().count() > 0) {
        std::printf("  a latency relay in front of the server (the URLs above name it), adding %lld ms of\n"
                    "    round-trip time: half of it each way, and one more round trip for every new\n"
                    "    connection's TCP handshake\n",
            static_cast<long long>(stage.Rtt().count()));
    }
    std::printf("  the service library %s, loaded with dlopen; system ability 66054 started\n\n", libraryPath.c_str());
}

CallResult Call(ServiceSession &session, const std::string &request, const ResponseCollector &collector)
{
    return session.Request(HostPlatform::NativeCaller(static_cast<pid_t>(getuid())), request, collector.Callback(),
        OHOS::Vorn::IVornSAInterface::GetDescriptor(),
        static_cast<uint32_t>(OHOS::Vorn::VornInterfaceCode::GET_VORN_CONFIG_FROM_SERVER));
}

// Why the repeated request took as long as it did, in round trips of the relay.
void ExplainRepeat(long long elapsedMs, std::chrono::milliseconds rtt)
{
    const double trips = static_cast<double>(elapsedMs) / static_cast<double>(rtt.count());
    std::printf("That is %.1f round trips of %lld ms.\n", trips, static_cast<long long>(rtt.count()));
    constexpr double keptLimit = 1.5;
    if (trips < keptLimit) {
        std::printf("About one: the service kept its connection to the fallback URL from the first request\n"
                    "and sent this one on it, so only the request and its answer crossed the network.\n"
                    "A new connection would have cost two more first: the TCP handshake and the TLS one.\n\n");
        return;
    }
    std::printf("The service opened a new connection for it: one round trip for the TCP handshake, one\n"
                "for the TLS handshake, and one for the request and its answer. A connection kept from\n"
                "the first request would have saved the first two.\n\n");
}

// The same request again, now naming the URL that answered, on the same service instance.
// What an operator would see now with the platform's dump tool: the counters of this run.
void PrintDump(const ServiceSession &session)
{
    std::printf("The service's dump now, as the platform's dump tool (hidumper -s 66054) shows it:\n");
    std::fflush(stdout);
    if (RunDump(session, {}, stdout).exitStatus != EXIT_SUCCESS_RESPONSE) {
        std::printf("  (the dump could not be written)\n");
    }
    std::printf("\n");
}

void RepeatRequest(ServiceSession &session, const DemoStage &stage)
{
    // A client's own base URLs are used as they are, so this one carries the query endpoint.
    const std::string request =
        RequestText(stage, {stage.BaseUrl(DemoEndpoint::ANSWERING) + DemoStage::QUERY_ENDPOINT});
    auto arrivals = std::make_shared<Arrivals>();
    std::shared_ptr<ResponseCollector> collector =
        ResponseCollector::Create([arrivals](const std::string &text) { arrivals->Add(text); });
    std::printf("A second request, naming the URL that answered as its only base URL:\n  %s\n", request.c_str());
    const Clock::time_point callStart = Clock::now();
    (void)Call(session, request, *collector);
    collector->WaitForCount(1, RESPONSE_WAIT);
    std::vector<Arrival> received = arrivals->Get();
    if (received.empty()) {
        std::printf("No response arrived.\n\n");
        return;
    }
    const long long elapsed = Milliseconds(callStart, received.front().at);
    std::printf("Its response arrived %lld ms after the call, with code %lld.\n", elapsed,
        static_cast<long long>(CodeOf(ParseOrNull(received.front().text))));
    ExplainRepeat(elapsed, stage.Rtt());
    HostPlatform::FfrtWaitIdle(SETTLE_WAIT);
}

void PrintCall(const std::string &request, const CallResult &call)
{
    std::printf("The request carries no base URLs, so the service takes them from its server configuration:\n");
    std::printf("  %s\n", request.c_str());
    std::printf("The call returned at once with reply %d (result %d): the request was queued, and the\n",
        call.reply.value_or(-1), call.result);
    std::printf("answers come later, through the callback.\n\n");
}

std::vector<Moment> Timeline(const DemoStage &stage, const std::vector<Arrival> &arrivals)
{
    std::vector<Moment> moments;
    std::vector<ServerVisit> visits = stage.Visits();
    for (size_t i = 0; i < visits.size(); ++i) {
        Moment moment {visits[i].at, "the service tried " + visits[i].url, {}};
        bool answeredBefore = std::any_of(arrivals.begin(), arrivals.end(),
            [&visits, i](const Arrival &arrival) { return arrival.at < visits[i].at; });
        if (i > 0 && !answeredBefore) {
            moment.note = "no answer from the " + DemoStage::Name(visits[i - 1].endpoint) + " URL after " +
                std::to_string(Milliseconds(visits[i - 1].at, visits[i].at)) +
                " ms, so the service overtook it with the next one";
        }
        moments.push_back(moment);
    }
    for (size_t i = 0; i < arrivals.size(); ++i) {
        nlohmann::json response = ParseOrNull(arrivals[i].text);
        std::string endpoint = EndpointOf(response);
        Moment moment {arrivals[i].at,
            "response " + std::to_string(i + 1) + " through the callback: code " + std::to_string(CodeOf(response)) +
                (endpoint.empty() ? "" : ", from the " + endpoint + " URL"),
            {}};
        if (i > 0 && endpoint == DemoStage::Name(DemoEndpoint::STALLING)) {
            moment.note = "the overtaken attempt was never cancelled: it answered too, late";
        }
        moments.push_back(moment);
    }
    std::stable_sort(moments.begin(), moments.end(),
        [](const Moment &left, const Moment &right) { return left.at < right.at; });
    return moments;
}

void PrintTimeline(const std::vector<Moment> &moments, Clock::time_point callStart)
{
    std::printf("What happened, in milliseconds after the call:\n");
    for (const Moment &moment : moments) {
        std::printf("  %6lld ms  %s\n", Milliseconds(callStart, moment.at), moment.line.c_str());
        if (!moment.note.empty()) {
            std::printf("%s(%s)\n", INDENT, moment.note.c_str());
        }
    }
    std::printf("\n");
}

void PrintResponses(const std::vector<Arrival> &arrivals)
{
    if (arrivals.empty()) {
        std::printf("No response arrived.\n\n");
    }
    for (size_t i = 0; i < arrivals.size(); ++i) {
        nlohmann::json response = ParseOrNull(arrivals[i].text);
        std::string shown = response.is_discarded() ? arrivals[i].text : response.dump(2);
        std::printf("Response %zu, as the callback received it (pretty-printed):\n%s\n\n", i + 1, shown.c_str());
    }
}

bool FallbackAnswered(const std::vector<Arrival> &arrivals)
{
    return std::any_of(arrivals.begin(), arrivals.end(), [](const Arrival &arrival) {
        nlohmann::json response = ParseOrNull(arrival.text);
        return CodeOf(response) == SUCCESS_CODE && EndpointOf(response) == DemoStage::Name(DemoEndpoint::ANSWERING);
    });
}

// Runs the request with the service rooted in the stage; false (reported on standard error)
// when the service cannot be had.
bool SendDemoRequest(const DemoStage &stage, const std::string &libraryPath, const std::shared_ptr<Arrivals> &arrivals)
{
    std::error_code ignored;
    std::filesystem::path startFolder = std::filesystem::current_path(ignored);
    if (chdir(stage.RootFolder().c_str()) != 0) {
        std::fprintf(stderr, "vornctl demo: cannot enter %s: %s\n", stage.RootFolder().c_str(), std::strerror(errno));
        return false;
    }
    std::string error;
    std::unique_ptr<ServiceSession> session = ServiceSession::Open(libraryPath, error);
    if (session == nullptr) {
        std::fprintf(stderr, "vornctl demo: %s\n", error.c_str());
        return false;
    }
    PrintSetUp(stage, libraryPath);
    std::shared_ptr<ResponseCollector> collector =
        ResponseCollector::Create([arrivals](const std::string &text) { arrivals->Add(text); });
    std::string request = RequestText(stage);
    Clock::time_point callStart = Clock::now();
    CallResult call = Call(*session, request, *collector);
    PrintCall(request, call);
    collector->WaitForCount(EXPECTED_RESPONSES, RESPONSE_WAIT);
    HostPlatform::FfrtWaitIdle(SETTLE_WAIT);

    std::vector<Arrival> received = arrivals->Get();
    PrintTimeline(Timeline(stage, received), callStart);
    PrintResponses(received);
    if (stage.Rtt().count() > 0) {
        RepeatRequest(*session, stage);
    }
    PrintDump(*session);
    std::filesystem::current_path(startFolder, ignored);
    return true;
}
} // namespace

int RunDemo(const std::string &libraryPath, std::chrono::milliseconds rtt)
{
    UnsetProxyVariables();
    std::unique_ptr<DemoStage> stage;
    std::string error;
    try {
        stage = std::make_unique<DemoStage>();
        if (!stage->SetUp(error, rtt)) {
            std::fprintf(stderr, "vornctl demo: %s\n", error.c_str());
            return EXIT_UNAVAILABLE;
        }
    } catch (const std::exception &exception) {
        std::fprintf(stderr, "vornctl demo: %s\n", exception.what());
        return EXIT_UNAVAILABLE;
    }
    // The service logs a good deal; the demo tells its own story and keeps that log aside.
    setenv("VORN_HILOG_FILE", stage->LogFile().c_str(), 1);
    auto arrivals = std::make_shared<Arrivals>();
    if (!SendDemoRequest(*stage, libraryPath, arrivals)) {
        return EXIT_UNAVAILABLE;
    }
    std::string folder = stage->Folder();
    stage.reset();
    std::printf("Done: stopped the server and removed %s.\n", folder.c_str());
    return FallbackAnswered(arrivals->Get()) ? EXIT_SUCCESS_RESPONSE : EXIT_FAILURE_RESPONSES;
}
} // namespace Vornctl
