#ifndef VORN_INNER_API_VORN_RESPONSE_H
#define VORN_INNER_API_VORN_RESPONSE_H

#include <cstdint>
#include <optional>
#include <string>

namespace OHOS {
namespace Vorn {
// One response the service sent for a request: the outcome of one attempt.
struct VornResponse {
    // How one attempt went; times are wall-clock milliseconds.
    struct Statistics {
        std::string domain; // host of the attempted URL
        std::string errorCode; // the HTTP status as text, e.g. "200"
        uint64_t startTime = 0;
        uint64_t endTime = 0;
        uint64_t totalTime = 0; // endTime - startTime
        uint64_t waitTime = 0; // time the attempt waited for a worker
    };

    int64_t code = 0; // 200 on success, the HTTP status of a failure, -1 when no exchange happened
    std::string message; // e.g. "Request success", "PostHttpsRequest failed"
    std::string header; // response heads as text
    std::string body; // response body as received
    std::optional<Statistics> statistics; // only for attempts that reached the network

    bool IsSuccess() const
    {
        return code == 200; // the status the service reports for a successful attempt
    }

    // Reads a response JSON text; nullopt when it is not one (not JSON, or a key of the wrong kind).
    static std::optional<VornResponse> FromJson(const std::string &text);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_VORN_RESPONSE_H
