#ifndef VORN_INNER_API_VORN_CLIENT_H
#define VORN_INNER_API_VORN_CLIENT_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "vorn_request.h"
#include "vorn_response.h"

namespace OHOS {
namespace Vorn {
class ServiceConnection;

// What a system application or native service uses to reach the service. It finds the service
// through the system-ability manager (loading it when it is not running), keeps its proxy and
// reconnects on the next call after the service died.
//
// Results are the service's codes (0 accepted; 2 caller not allowed; 4 bad request text; ...)
// or, when the call did not reach it, the IPC code: ERR_NULL_OBJECT (7) when the service could
// not be had, ERR_DEAD_OBJECT when it died during the call.
//
// A request is waiting from the moment Request returns 0 until its response window has passed.
// While it waits, each response the service sends goes to onResponse, and if the service dies
// the request is told once through onServiceDied and hears nothing more. After the window it is
// forgotten: late responses are dropped (with a log line) and a death is not reported. The kit
// itself never blocks on responses; the handlers of one request never run at the same time.
class VornClient {
public:
    using ResponseHandler = std::function<void(const VornResponse &response)>;
    using ServiceDiedHandler = std::function<void()>;

    struct Options {
        // Longer than the service can take to answer: 9 s for the walk over the base URLs
        // plus up to 10 s for an attempt started at its end.
        std::chrono::milliseconds responseWindow {30000};
        // How long LoadSystemAbility may take to start the service, in seconds.
        int32_t loadTimeoutSeconds = 5;
    };

    // One client per process is usually enough.
    static VornClient &GetInstance();

    VornClient();
    explicit VornClient(const Options &options);
    // Requests still waiting are forgotten: their handlers are not called any more.
    ~VornClient();
    VornClient(const VornClient &) = delete;
    VornClient &operator=(const VornClient &) = delete;

    // Hands the request to the service. The handlers run on IPC threads; onServiceDied may run
    // before Request returns if the service died right after accepting the request.
    int32_t Request(const VornRequest &request, ResponseHandler onResponse, ServiceDiedHandler onServiceDied = nullptr);
    // Reports an analytics event; `content` is a JSON object text of string values.
    int32_t ReportEvent(const std::string &eventId, const std::string &content);
    int32_t ReportEvent(const std::string &eventId, const std::map<std::string, std::string> &content);

private:
    const Options options_;
    const std::shared_ptr<ServiceConnection> connection_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_VORN_CLIENT_H
