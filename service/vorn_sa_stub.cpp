#include "vorn_sa_stub.h"

#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include <nlohmann/json.hpp>

#include "accesstoken_kit.h"
#include "ipc_skeleton.h"
#include "json_utils.h"
#include "omsa_util.h"
#include "tokenid_kit.h"
#include "vorn_error_code.h"
#include "vorn_log.h"
#include "vorn_metrics.h"
#include "vorn_omsa_info.h"
#include "vorn_server_logic.h"
#include "vorn_thread.h"

namespace OHOS {
namespace Vorn {
namespace {
const std::string BINDER_TASK_NAME = "vorn_binder_task";

int32_t WriteParamError(MessageParcel &reply)
{
    if (!reply.WriteInt32(ERR_PARCEL_READ_PARAM)) {
        VORN_LOGE("write ERR_PARCEL_READ_PARAM failed");
        return ERR_PARCEL_WRITE;
    }
    return ERR_PARCEL_READ_PARAM;
}
} // namespace

bool IsSystemAppCalling()
{
    return Security::AccessToken::TokenIdKit::IsSystemAppByFullTokenID(IPCSkeleton::GetCallingFullTokenID());
}

bool IsSACall()
{
    return Security::AccessToken::AccessTokenKit::GetTokenTypeFlag(IPCSkeleton::GetCallingTokenID()) ==
        Security::AccessToken::TOKEN_NATIVE;
}

VornSAStub::VornSAStub() : IRemoteStub<IVornSAInterface>(false) {}

int VornSAStub::OnRemoteRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option)
{
    VORN_LOGI("VornSAStub::OnRemoteRequest enter");
    // Native services are asked about first, so a native caller never reaches the system-app query.
    if (!IsSACall() && !IsSystemAppCalling()) {
        VORN_LOGW("The caller is not a system application.");
        if (!reply.WriteInt32(ILLEGAL_APP_CALLING)) {
            VORN_LOGE("write ILLEGAL_APP_CALLING failed");
            return ERR_PARCEL_WRITE;
        }
        return ILLEGAL_APP_CALLING;
    }
    if (data.ReadInterfaceToken() != GetDescriptor()) {
        VORN_LOGE("read descriptor failed.");
        return ERR_READ_DESCRIPTOR;
    }
    switch (static_cast<VornInterfaceCode>(code)) {
        case VornInterfaceCode::GET_VORN_CONFIG_FROM_SERVER:
            return HandleGetVornConfigFromServer(data, reply);
        case VornInterfaceCode::VORN_OMSA_EVENT:
            return HandleVornOmsaEvent(data, reply);
        default:
            return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
    }
}

int32_t VornSAStub::HandleGetVornConfigFromServer(MessageParcel &data, MessageParcel &reply)
{
    sptr<IRemoteObject> remoteObject = data.ReadRemoteObject();
    if (remoteObject == nullptr) {
        VORN_LOGE("remoteObject is null");
        return WriteParamError(reply);
    }
    sptr<IVornRequestCallback> callback = iface_cast<IVornRequestCallback>(remoteObject);
    std::string paramStr = data.ReadString();
    if (paramStr.empty()) {
        VORN_LOGE("paramStr is null");
        return WriteParamError(reply);
    }
    if (callback == nullptr) {
        VORN_LOGE("observer is null");
        return WriteParamError(reply);
    }
    int32_t result = PostVornRequest(paramStr, callback);
    if (!reply.WriteInt32(result)) {
        VORN_LOGE("write PostVornRequest failed");
        return ERR_PARCEL_WRITE;
    }
    return result;
}

int32_t VornSAStub::PostVornRequest(const std::string &paramStr, const sptr<IVornRequestCallback> &callback)
{
    VORN_LOGI("VornSAStub::PostVornRequest in");
    VornInitConfigParser::VornRequestInfo info;
    try {
        std::optional<nlohmann::json> json = JsonUtils::Parse(paramStr);
        if (!json) {
            VORN_LOGE("VornSAStub::PostVornRequest json accept failed");
            return ERR_PARCEL_READ_PARAM;
        }
        VornInitConfigParser::FromJson(*json, info);
    } catch (const nlohmann::json::exception &) {
        VORN_LOGE("VornSAStub::PostVornRequest json parse failed");
        return ERR_PARCEL_READ_PARAM;
    }
    VornMetrics::Add(VornMetrics::Counter::REQUESTS);
    VornThread::GetThreadPool(BINDER_POOL)
        ->PostTaskDelay(
            [info = std::move(info), callback]() {
                VornMetrics::InFlight inFlight(VornMetrics::Gauge::REQUESTS_IN_FLIGHT);
                // Nothing may escape a pool task: an escaping exception would end the whole service.
                try {
                    (void)SendNetworkRequest(info, callback);
                } catch (const std::exception &e) {
                    VORN_LOGE("VornSAStub::SendNetworkRequest exception: %{public}s", e.what());
                } catch (...) {
                    VORN_LOGE("VornSAStub::SendNetworkRequest unknown exception");
                }
            },
            BINDER_TASK_NAME, 0);
    VORN_LOGI("VornSAStub::PostVornRequest out");
    return SUCCESS;
}

int32_t VornSAStub::SendNetworkRequest(const VornInitConfigParser::VornRequestInfo &info,
    const sptr<IVornRequestCallback> &callback)
{
    VORN_LOGI("VornSAStub::SendNetworkRequest in");
    auto serverLogic = std::make_shared<VornServerLogic>(info);
    if (serverLogic->GetAllServiceUrl(callback) != SUCCESS) {
        VORN_LOGI("VornSAStub:: GetAllServiceUrl failed");
        return ERR_SERVICE_INTERNAL;
    }
    VORN_LOGI("VornSAStub::SendNetworkRequest out");
    return SUCCESS;
}

int32_t VornSAStub::HandleVornOmsaEvent(MessageParcel &data, MessageParcel &reply)
{
    std::string paramStr = data.ReadString();
    if (paramStr.empty()) {
        VORN_LOGE("paramStr is null");
        return WriteParamError(reply);
    }
    // Unlike a request, a malformed event leaves the reply empty.
    VornOmsaInfo::OmsaInfo omsaInfo;
    try {
        std::optional<nlohmann::json> json = JsonUtils::Parse(paramStr);
        if (!json) {
            VORN_LOGE("VornSAStub::VornOmsaEvent json accept failed");
            return ERR_PARCEL_READ_PARAM;
        }
        VornOmsaInfo::FromJson(*json, omsaInfo);
    } catch (const nlohmann::json::exception &) {
        VORN_LOGE("VornSAStub::VornOmsaEvent json parse failed");
        return ERR_PARCEL_READ_PARAM;
    }
    int32_t result = VornOmsaEvent(omsaInfo.eventId, omsaInfo.content);
    if (!reply.WriteInt32(result)) {
        VORN_LOGE("write VornOmsaEvent failed");
        return ERR_PARCEL_WRITE;
    }
    return result;
}

int32_t VornSAStub::VornOmsaEvent(const std::string &eventId, const std::string &content)
{
    VORN_LOGI("VornOmsaEvent eventId:%{public}s, content:%{private}s", eventId.c_str(), content.c_str());
    OMSAUtil::OnOmsaEvent(eventId, content);
    return SUCCESS;
}
} // namespace Vorn
} // namespace OHOS
