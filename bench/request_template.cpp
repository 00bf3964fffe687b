#include "request_template.h"

#include "bench_request.h"

namespace VornBench {
namespace {
// An id whose digits occur nowhere else in the request.
constexpr size_t MARKER_ID = 918273645546372819;
} // namespace

RequestTemplate::RequestTemplate(const std::string &baseUrl, const std::string &caFile,
    const std::vector<std::string> &paths)
{
    const std::string marker = std::to_string(MARKER_ID);
    const std::string text = ToRequestJson(MakeBenchRequest(MARKER_ID), baseUrl, caFile, paths);
    size_t start = 0;
    for (size_t found = text.find(marker); found != std::string::npos; found = text.find(marker, start)) {
        pieces_.push_back(text.substr(start, found - start));
        start = found + marker.size();
    }
    pieces_.push_back(text.substr(start));
}

std::string RequestTemplate::For(size_t requestId) const
{
    const std::string id = std::to_string(requestId);
    std::string request = pieces_.front();
    for (size_t i = 1; i < pieces_.size(); ++i) {
        request += id;
        request += pieces_[i];
    }
    return request;
}
} // namespace VornBench
