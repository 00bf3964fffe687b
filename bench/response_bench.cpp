// What an attempt does after its transfer: synthesise the response heads clients get, and
// assemble the response JSON around them, the body and the timing statistics.
#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include "bench_request.h"
#include "vorn_http_logic.h"
#include "vorn_init_config_parser.h"
#include "vorn_server_logic.h"

namespace VornBench {
namespace {
constexpr size_t BODY_BYTES = 4096;

OHOS::Vorn::VornInitConfigParser::VornRequestInfo RequestInfo()
{
    BenchRequest request = MakeBenchRequest(1);
    OHOS::Vorn::VornInitConfigParser::VornRequestInfo info;
    info.appVersion = request.appVersion;
    info.saType = "qel";
    info.queryHeaders = request.queryHeaders;
    info.requestHeaders = request.requestHeaders;
    info.requestBody = request.requestBody;
    return info;
}

// Twelve lines as libcurl collects them for a routing service's answer, blank line included.
std::string TypicalRawHeads()
{
    return "HTTP/1.1 200 OK\r\n"
           "Server: nginx\r\n"
           "Date: Tue, 04 Jun 2024 09:12:44 GMT\r\n"
           "Content-Type: application/json;charset=UTF-8\r\n"
           "Content-Length: 4096\r\n"
           "Connection: keep-alive\r\n"
           "Vary: Accept-Encoding\r\n"
           "Cache-Control: max-age=3600\r\n"
           "X-Request-Id: 7f3c2a9e-51d4-4b8e-9c11-000000000001\r\n"
           "Strict-Transport-Security: max-age=31536000; includeSubDomains\r\n"
           "X-Content-Type-Options: nosniff\r\n"
           "\r\n";
}

// A JSON body of `bytes` bytes, quotes and all, as a routing service sends it.
std::string JsonBody(size_t bytes)
{
    nlohmann::json endpoints = nlohmann::json::array();
    std::string body;
    for (size_t i = 0; body.size() < bytes; ++i) {
        endpoints.push_back({{"service", "com.example.service.endpoint" + std::to_string(i)},
            {"url", "https://svc" + std::to_string(i) + ".eu.example.com/api/v2"}, {"ttl", 3600}});
        body = nlohmann::json {{"resultCode", 0}, {"endpoints", endpoints}}.dump();
    }
    return body.substr(0, bytes);
}

void BM_BuildResponseHeads(benchmark::State &state)
{
    const OHOS::Vorn::VornInitConfigParser::VornRequestInfo info = RequestInfo();
    const std::string postBody = PostBody(MakeBenchRequest(1));
    const std::string rawHeads = TypicalRawHeads();
    for (auto _ : state) {
        benchmark::DoNotOptimize(OHOS::Vorn::HttpLogic::BuildResponseHeads(info, postBody, rawHeads));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(rawHeads.size()));
}
BENCHMARK(BM_BuildResponseHeads)->Unit(benchmark::kMicrosecond);

void BM_GetResponse(benchmark::State &state)
{
    const OHOS::Vorn::VornInitConfigParser::VornRequestInfo info = RequestInfo();
    const std::string header =
        OHOS::Vorn::HttpLogic::BuildResponseHeads(info, PostBody(MakeBenchRequest(1)), TypicalRawHeads());
    const std::string body = JsonBody(BODY_BYTES);
    auto statistics = std::make_shared<OHOS::Vorn::VornServerLogic::VornRequestStatistics>();
    statistics->domain = "svc0.eu.example.com";
    statistics->submitTime = 1717492364000;
    statistics->startTime = 1717492364002;
    statistics->endTime = 1717492364049;
    statistics->errorCode = "200";
    statistics->hasStatistics = true;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            OHOS::Vorn::VornServerLogic::GetResponse(200, "Request success", header, body, statistics));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(header.size() + body.size()));
}
BENCHMARK(BM_GetResponse)->Unit(benchmark::kMicrosecond);
} // namespace
} // namespace VornBench
