#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "device_runtime.h"
#include "ffrt_host.h"
#include "https_fixture.h"
#include "ipc_host.h"
#include "process_status.h"
#include "raw_service_client.h"
#include "response_recorder.h"
#include "vorn_sa.h"
#include "vorn_sa_id.h"

// Many requests at once through the IPC front against a mix of fast, failing, stalling and
// redirecting endpoints. Every request must get exactly the responses the race rules predict,
// and once the service idles its worker threads must be gone again.
//
// The size is set by the environment, so that longer runs need no rebuild:
//   VORN_SOAK_REQUESTS     requests in all (default 1000)
//   VORN_SOAK_CONCURRENCY  requests in flight at once (default 64)
// e.g. VORN_SOAK_REQUESTS=100000 ./tests/soak_timing_test
namespace {
using namespace std::chrono_literals;
using OHOS::sptr;
using VornTestbed::HttpResponse;
using VornTestbed::ProcessStatus;
using Json = nlohmann::json;

size_t EnvCount(const char *name, size_t fallback)
{
    const char *text = std::getenv(name);
    return text != nullptr && std::atoi(text) > 0 ? static_cast<size_t>(std::atoi(text)) : fallback;
}

// One kind of request: its URLs and the responses it must get, as (code, body) in any order.
// A stalled URL is always overtaken after its second, and keeps running to its own success;
// a failed URL answers only when it is the last one.
struct Scenario {
    std::vector<std::string> paths;
    std::vector<std::pair<int, std::string>> responses;
};

const std::vector<Scenario> SCENARIOS = {
    {{"/fast"}, {{200, "fast"}}},
    {{"/fail"}, {{500, "broken"}}},
    {{"/fail", "/fast"}, {{200, "fast"}}},
    {{"/redirect"}, {{200, "fast"}}},
    {{"/stall", "/fast"}, {{200, "fast"}, {200, "late"}}},
    {{"/stall", "/fail"}, {{200, "late"}, {500, "broken"}}},
};

class SoakTimingTest : public VornTest::HttpsFixture {
protected:
    void SetUp() override
    {
        HttpsFixture::SetUp();
        server_->Respond("/fast", HttpResponse::Text(200, "fast"));
        server_->Respond("/fail", HttpResponse::Text(500, "broken"));
        server_->Respond("/redirect", HttpResponse::Redirect(302, "/fast"));
        HttpResponse stall = HttpResponse::Text(200, "late");
        stall.delay = 1500ms;
        server_->Respond("/stall", stall);
    }

    std::string RequestText(const Scenario &scenario, size_t index) const
    {
        Json urls = Json::array();
        for (const std::string &path : scenario.paths) {
            urls.push_back(Url(path));
        }
        return Json {{"baseUrls", urls}, {"caFile", files_.caFile}, {"queryHeaders", "n=" + std::to_string(index)},
            {"requestBody", {"soak"}}}
            .dump();
    }

    // What is wrong with the responses of request `index`; empty when they are as predicted.
    static std::string Check(const Scenario &scenario, const std::vector<std::string> &responses)
    {
        std::vector<std::pair<int, std::string>> got;
        for (const std::string &text : responses) {
            const Json response = Json::parse(text);
            const int code = response.at("code").get<int>();
            const std::string expectedMessage = code == 200 ? "Request success" : "PostHttpsRequest failed";
            if (response.at("message") != expectedMessage) {
                return "message " + response.at("message").dump() + " for code " + std::to_string(code);
            }
            got.emplace_back(code, response.at("body").get<std::string>());
        }
        auto expected = scenario.responses;
        std::sort(got.begin(), got.end());
        std::sort(expected.begin(), expected.end());
        return got == expected ? "" : Json(got).dump() + " instead of " + Json(expected).dump();
    }

    sptr<OHOS::Vorn::VornSA> sa_ = new OHOS::Vorn::VornSA(OHOS::Vorn::VORN_SA_ID, false);
    VornTools::RawServiceClient client_ {HostPlatform::MakeRemoteProxy(sa_)};
};

TEST_F(SoakTimingTest, EveryRequestGetsThePredictedResponsesAndThreadsGoBackToBaseline)
{
    const size_t total = EnvCount("VORN_SOAK_REQUESTS", 1000);
    const size_t concurrency = EnvCount("VORN_SOAK_CONCURRENCY", 64);
    // The log of a thousand requests would only slow the run down.
    VornTest::ScopedEnv quiet("VORN_HILOG_FILE", "/dev/null");
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(10s));
    // Once started, the runtime keeps a base of workers (one per CPU, at least two) for good;
    // they count as started from the outset.
    const size_t workersNow = HostPlatform::FfrtWorkerCount();
    const size_t baselineWorkers = std::max<size_t>({workersNow, 2, std::thread::hardware_concurrency()});
    const size_t baselineThreads = ProcessStatus::Read().threads + (baselineWorkers - workersNow);

    std::vector<sptr<VornTest::ResponseRecorder>> recorders(total);
    std::atomic<size_t> next {0};
    std::atomic<size_t> refused {0};
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> clients;
    for (size_t c = 0; c < concurrency; ++c) {
        clients.emplace_back([&]() {
            for (size_t i = next++; i < total; i = next++) {
                const Scenario &scenario = SCENARIOS[i % SCENARIOS.size()];
                recorders[i] = new VornTest::ResponseRecorder();
                if (client_.Request(RequestText(scenario, i), HostPlatform::MakeRemoteProxy(recorders[i])).result !=
                    0) {
                    ++refused;
                }
                // The slot frees once the predicted responses are in; a missing one shows below.
                (void)recorders[i]->WaitForCount(scenario.responses.size(), 60s);
            }
        });
    }
    for (auto &client : clients) {
        client.join();
    }
    ASSERT_TRUE(HostPlatform::FfrtWaitIdle(60s));
    const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::cout << total << " requests at concurrency " << concurrency << " in " << seconds << " s; peak "
              << HostPlatform::FfrtPeakWorkerCount() << " workers\n";

    EXPECT_EQ(refused.load(), 0u);
    size_t wrong = 0;
    for (size_t i = 0; i < total; ++i) {
        const std::string problem = Check(SCENARIOS[i % SCENARIOS.size()], recorders[i]->Responses());
        if (!problem.empty() && ++wrong <= 10) {
            ADD_FAILURE() << "request " << i << ": " << problem;
        }
    }
    EXPECT_EQ(wrong, 0u);

    // Workers leave after three idle seconds. The service keeps its connections (the server's
    // threads for them would stay) until the server goes; what stays for good is the transfer
    // loop's thread and the runtime's timer, both started by the first request.
    server_->Stop();
    const size_t settledThreads = baselineThreads + 2;
    const auto deadline = std::chrono::steady_clock::now() + 30s;
    while ((ProcessStatus::Read().threads > settledThreads || HostPlatform::FfrtWorkerCount() > baselineWorkers) &&
        std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(100ms);
    }
    EXPECT_LE(HostPlatform::FfrtWorkerCount(), baselineWorkers);
    EXPECT_LE(ProcessStatus::Read().threads, settledThreads);
}
} // namespace
