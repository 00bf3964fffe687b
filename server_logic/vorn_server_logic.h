#ifndef VORN_SERVER_LOGIC_VORN_SERVER_LOGIC_H
#define VORN_SERVER_LOGIC_VORN_SERVER_LOGIC_H

#include <cstdint>
#include <memory>
#include <string>

#include "i_vorn_request_callback.h"
#include "refbase.h"
#include "vorn_init_config_parser.h"

namespace OHOS {
namespace Vorn {
// The request engine: settles a request's base URLs, races them on the HTTP pool under the
// time budget and answers the client through its callback.
class VornServerLogic {
public:
    // What an attempt delivers through its future.
    struct VornRequestResult {
        int32_t code = 0;
        std::string message;
    };

    // Timing of one attempt, shared between the submitter and the attempt's worker; it becomes
    // the "statistics" object of the response.
    struct VornRequestStatistics {
        std::string domain;
        uint64_t submitTime = 0;
        uint64_t startTime = 0;
        uint64_t endTime = 0;
        std::string errorCode;
        bool hasStatistics = false;
    };

    explicit VornServerLogic(const VornInitConfigParser::VornRequestInfo &info);
    virtual ~VornServerLogic() = default;

    // Entry point for one client request; returns 0 once the request job reported success.
    int32_t GetAllServiceUrl(const sptr<IVornRequestCallback> &callback);
    // Replaces the request's base URLs with the routing service's from the configuration file.
    int32_t ParseDefaultConfigFile();

    static int32_t SubmitRequestTask(VornInitConfigParser::VornRequestInfo info,
        const sptr<IVornRequestCallback> &callback, uint64_t requestStartTime);
    static VornRequestResult ThreadFunc(VornInitConfigParser::VornRequestInfo info,
        const sptr<IVornRequestCallback> &callback, std::string url, uint64_t attemptIndex,
        std::shared_ptr<VornRequestStatistics> statistics);
    static std::string GetResponse(int64_t code, const std::string &message, const std::string &header,
        const std::string &body, const std::shared_ptr<VornRequestStatistics> &statistics);

private:
    int32_t FailEarly(const std::string &message) const;

    VornInitConfigParser::VornRequestInfo requestInfo_;
    sptr<IVornRequestCallback> callback_;
    uint64_t requestStartTime_ = 0;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_SERVER_LOGIC_VORN_SERVER_LOGIC_H
