#ifndef VORN_BENCH_BENCH_REQUEST_H
#define VORN_BENCH_BENCH_REQUEST_H

#include <cstddef>
#include <string>
#include <vector>

#include "http_message.h"

namespace VornBench {
// The path the local server answers on, standing in for a routing service's query endpoint.
constexpr const char *QUERY_PATH = "/query";

// What a typical device client asks for: a dozen header lines, a query of app and device
// facts, and the names of the services it wants resolved. As request JSON it is about 1 KB.
struct BenchRequest {
    std::string appVersion;
    std::string queryHeaders;
    std::vector<std::string> requestHeaders;
    std::vector<std::string> requestBody;
};

// `requestId` goes into the query and a header, so every request on the wire is distinct.
BenchRequest MakeBenchRequest(size_t requestId);
// The request JSON a client hands the service, aimed at `baseUrl` + QUERY_PATH.
std::string ToRequestJson(const BenchRequest &request, const std::string &baseUrl, const std::string &caFile);
// What the transport posts for it: {"services": [...]}.
std::string PostBody(const BenchRequest &request);
// The routing service's answer: 200 at once, a cacheable JSON body of about 1 KB.
VornTestbed::HttpResponse QueryResponse();
} // namespace VornBench

#endif // VORN_BENCH_BENCH_REQUEST_H
