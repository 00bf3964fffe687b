#include "vorn_response.h"

#include <nlohmann/json.hpp>

namespace OHOS {
namespace Vorn {
namespace {
// A missing key keeps the field's default, so that a response without "header" (say) is still read.
template <typename Value> void Read(const nlohmann::json &object, const char *key, Value &field)
{
    auto it = object.find(key);
    if (it != object.end()) {
        it->get_to(field);
    }
}

VornResponse::Statistics ReadStatistics(const nlohmann::json &object)
{
    VornResponse::Statistics statistics;
    Read(object, "req_domain", statistics.domain);
    Read(object, "req_error_code", statistics.errorCode);
    Read(object, "req_start_time", statistics.startTime);
    Read(object, "req_end_time", statistics.endTime);
    Read(object, "req_total_time", statistics.totalTime);
    Read(object, "req_wait_time", statistics.waitTime);
    return statistics;
}
} // namespace

std::optional<VornResponse> VornResponse::FromJson(const std::string &text)
{
    nlohmann::json object = nlohmann::json::parse(text, nullptr, false);
    if (!object.is_object()) {
        return std::nullopt;
    }
    try {
        VornResponse response;
        Read(object, "code", response.code);
        Read(object, "message", response.message);
        Read(object, "header", response.header);
        Read(object, "body", response.body);
        auto statistics = object.find("statistics");
        if (statistics != object.end()) {
            if (!statistics->is_object()) {
                return std::nullopt;
            }
            response.statistics = ReadStatistics(*statistics);
        }
        return response;
    } catch (const nlohmann::json::exception &) {
        return std::nullopt;
    }
}
} // namespace Vorn
} // namespace OHOS
