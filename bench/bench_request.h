#ifndef VORN_BENCH_BENCH_REQUEST_H
#define VORN_BENCH_BENCH_REQUEST_H

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "http_message.h"

namespace VornBench {
// Three times the race's one second per URL: the second URL starts long before the first ends.
constexpr std::chrono::milliseconds STALL_DELAY(3000);
// The path the local server answers on, standing in for a routing service's query endpoint.
constexpr const char *QUERY_PATH = "/query";
// A path whose answer, the same as the query's, comes only after STALL_DELAY: a primary URL
// that stalls, with QUERY_PATH as the second URL the race falls back to.
constexpr const char *STALLED_PATH = "/stalled";

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
// The request JSON a client hands the service, aimed at `baseUrl` + each of `paths` in turn.
std::string ToRequestJson(const BenchRequest &request, const std::string &baseUrl, const std::string &caFile,
    const std::vector<std::string> &paths = {QUERY_PATH});
// What the transport posts for it: {"services": [...]}.
std::string PostBody(const BenchRequest &request);
// The routing service's answer: 200 at once, a cacheable JSON body of about 1 KB.
VornTestbed::HttpResponse QueryResponse();
// The same answer after STALL_DELAY.
VornTestbed::HttpResponse StalledResponse();
} // namespace VornBench

#endif // VORN_BENCH_BENCH_REQUEST_H
