#ifndef VORN_BENCH_SERVICE_LOAD_H
#define VORN_BENCH_SERVICE_LOAD_H

#include <string>

#include "i_vorn_sa_interface.h"
#include "iremote_object.h"
#include "load_target.h"
#include "request_template.h"
#include "run_result.h"

namespace VornBench {
// Sends requests through the whole service of this process, as client processes would: the
// code-1 transaction through the client kit's proxy of the service, one callback object per request, and the
// time from the call to the first response that callback receives. `concurrency` client
// threads each send a request and wait for its answer before sending the next.
class ServiceLoad {
public:
    ServiceLoad(OHOS::sptr<OHOS::IRemoteObject> service, LoadTarget target);
    RunResult Run();

private:
    struct Call;
    struct Outcome;
    Outcome Drive(const RequestTemplate &templates, size_t requests, size_t concurrency) const;
    Call CallOnce(const RequestTemplate &templates, size_t index) const;
    static void SettleToIdle();

    OHOS::sptr<OHOS::Vorn::IVornSAInterface> service_;
    LoadTarget target_;
    RequestTemplate warmUp_;
    RequestTemplate measured_;
};
} // namespace VornBench

#endif // VORN_BENCH_SERVICE_LOAD_H
