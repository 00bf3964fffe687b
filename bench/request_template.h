#ifndef VORN_BENCH_REQUEST_TEMPLATE_H
#define VORN_BENCH_REQUEST_TEMPLATE_H

#include <cstddef>
#include <string>
#include <vector>

namespace VornBench {
// The request JSON of MakeBenchRequest(id) for any id, made by joining fixed pieces around the
// id: the clients of a load run spend next to nothing on their requests, so the process's CPU
// time is the service's.
class RequestTemplate {
public:
    RequestTemplate(const std::string &baseUrl, const std::string &caFile, const std::vector<std::string> &paths);
    // Equal to ToRequestJson(MakeBenchRequest(requestId), baseUrl, caFile, paths).
    std::string For(size_t requestId) const;

private:
    std::vector<std::string> pieces_;
};
} // namespace VornBench

#endif // VORN_BENCH_REQUEST_TEMPLATE_H
