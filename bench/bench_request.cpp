#include "bench_request.h"

#include <utility>

#include <nlohmann/json.hpp>

namespace VornBench {
namespace {
constexpr size_t SERVICE_COUNT = 12;
constexpr size_t ENDPOINT_COUNT = 10;
} // namespace

BenchRequest MakeBenchRequest(size_t requestId)
{
    const std::string id = std::to_string(requestId);
    BenchRequest request;
    request.appVersion = "14.2.0.301";
    request.queryHeaders = "appId=104857631&deviceType=phone&osVersion=5.0.0.115&region=eu&lang=en-GB&"
                           "channel=release&reqId=" +
        id;
    request.requestHeaders = {
        "Content-Type: application/json;charset=UTF-8",
        "Accept: application/json",
        "User-Agent: vorn-client/14.2.0 (phone; 5.0.0)",
        "X-Request-Id: 7f3c2a9e-51d4-4b8e-9c11-" + id,
        "X-Trace-Id: 00f067aa0ba902b7-4bf92f3577b34da6",
        "X-Client-Version: 14.2.0.301",
        "X-Device-Model: HBN-AL80",
        "X-Network-Type: wifi",
        "X-App-Package: com.example.cloud.sync",
        "X-Sign-Algorithm: HMAC-SHA256",
        "X-Sign: 6d9b5f0c3e8a41b2f7c4d1e9a0b3c5d7e2f4a6b8c0d2e4f6a8b0c2d4e6f8a0b2",
        "Accept-Language: en-GB,en;q=0.8",
    };
    for (size_t i = 0; i < SERVICE_COUNT; ++i) {
        request.requestBody.push_back("com.example.service.endpoint" + std::to_string(i));
    }
    return request;
}

std::string ToRequestJson(const BenchRequest &request, const std::string &baseUrl, const std::string &caFile,
    const std::vector<std::string> &paths)
{
    nlohmann::json urls = nlohmann::json::array();
    for (const std::string &path : paths) {
        urls.push_back(baseUrl + path);
    }
    nlohmann::json json;
    json["interfaceName"] = "";
    json["appVersion"] = request.appVersion;
    json["caFile"] = caFile;
    json["saType"] = "qel";
    json["requestTimeOut"] = 9000;
    json["queryHeaders"] = request.queryHeaders;
    json["baseUrls"] = std::move(urls);
    json["requestHeaders"] = request.requestHeaders;
    json["requestBody"] = request.requestBody;
    return json.dump();
}

std::string PostBody(const BenchRequest &request)
{
    nlohmann::json body;
    body["services"] = request.requestBody;
    return body.dump();
}

VornTestbed::HttpResponse QueryResponse()
{
    nlohmann::json endpoints = nlohmann::json::array();
    for (size_t i = 0; i < ENDPOINT_COUNT; ++i) {
        endpoints.push_back({{"service", "com.example.service.endpoint" + std::to_string(i)},
            {"url", "https://svc" + std::to_string(i) + ".eu.example.com/api/v2"}, {"ttl", 3600}});
    }
    nlohmann::json body;
    body["resultCode"] = 0;
    body["endpoints"] = std::move(endpoints);
    VornTestbed::HttpResponse response;
    response.headerLines = {"Content-Type: application/json;charset=UTF-8", "Cache-Control: max-age=3600"};
    response.body = body.dump();
    return response;
}

VornTestbed::HttpResponse StalledResponse()
{
    VornTestbed::HttpResponse response = QueryResponse();
    response.delay = STALL_DELAY;
    return response;
}
} // namespace VornBench
