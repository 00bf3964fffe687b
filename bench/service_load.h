#ifndef VORN_BENCH_SERVICE_LOAD_H
#define VORN_BENCH_SERVICE_LOAD_H

#include <string>

#include "iremote_object.h"
#include "load_target.h"
#include "request_template.h"
#include "run_result.h"
#include "service_client.h"

namespace VornBench {
// Sends requests through the whole service of this process, as client processes would: the
// code-1 transaction on the service's remote object, one callback object per request, and the
// time from the call to the first response that callback receives. `concurrency` client
// threads each send a request and wait for its answer before sending the next.
class ServiceLoad {
public:
    // Starts the system ability and looks up its remote object; null with `error` set on failure.
    static OHOS::sptr<OHOS::IRemoteObject> StartService(std::string &error);

    ServiceLoad(OHOS::sptr<OHOS::IRemoteObject> service, LoadTarget target);
    RunResult Run();

private:
    struct Call;
    struct Outcome;
    Outcome Drive(size_t requests, size_t concurrency) const;
    Call CallOnce(size_t index) const;
    static void SettleToIdle();

    VornClient::ServiceClient client_;
    LoadTarget target_;
    RequestTemplate requests_;
};
} // namespace VornBench

#endif // VORN_BENCH_SERVICE_LOAD_H
