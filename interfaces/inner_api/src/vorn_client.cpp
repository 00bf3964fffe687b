#include "vorn_client.h"

#include <nlohmann/json.hpp>

#include "ipc_types.h"
#include "pending_request.h"
#include "service_connection.h"
#include "vorn_error_code.h"
#include "vorn_log.h"
#include "vorn_request_callback_stub.h"

namespace OHOS {
namespace Vorn {
VornClient &VornClient::GetInstance()
{
    // Never destroyed: IPC threads may still deliver to it while the process exits.
    static auto *instance = new VornClient();
    return *instance;
}

VornClient::VornClient() : VornClient(Options {}) {}

VornClient::VornClient(const Options &options)
    : options_(options), connection_(std::make_shared<ServiceConnection>(options.loadTimeoutSeconds))
{
}

VornClient::~VornClient() = default;

int32_t VornClient::Request(const VornRequest &request, ResponseHandler onResponse, ServiceDiedHandler onServiceDied)
{
    std::string paramStr = request.ToJson();
    if (paramStr.empty()) {
        return ERR_PARCEL_READ_PARAM;
    }
    uint64_t generation = 0;
    sptr<IVornSAInterface> service = connection_->Get(generation);
    if (service == nullptr) {
        return ERR_NULL_OBJECT;
    }
    auto pending = std::make_shared<PendingRequest>(std::move(onResponse), std::move(onServiceDied),
        PendingRequest::Clock::now() + options_.responseWindow);
    sptr<VornRequestCallbackStub> callback =
        new VornRequestCallbackStub([pending](const std::string &text) { pending->Deliver(text); });
    int32_t result = service->PostVornRequest(paramStr, callback);
    if (result != SUCCESS) {
        pending->Close();
        return result;
    }
    connection_->Watch(generation, pending, callback);
    return SUCCESS;
}

int32_t VornClient::ReportEvent(const std::string &eventId, const std::string &content)
{
    uint64_t generation = 0;
    sptr<IVornSAInterface> service = connection_->Get(generation);
    if (service == nullptr) {
        return ERR_NULL_OBJECT;
    }
    return service->VornOmsaEvent(eventId, content);
}

int32_t VornClient::ReportEvent(const std::string &eventId, const std::map<std::string, std::string> &content)
{
    std::string text;
    try {
        text = nlohmann::json(content).dump();
    } catch (const nlohmann::json::exception &) {
        VORN_LOGE("VornClient::ReportEvent content is not UTF-8");
        return ERR_PARCEL_READ_PARAM;
    }
    return ReportEvent(eventId, text);
}
} // namespace Vorn
} // namespace OHOS
