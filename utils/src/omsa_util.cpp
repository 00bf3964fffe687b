#include "omsa_util.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

#include <nlohmann/json.hpp>

#include "base_event.h"
#include "event_handler_executor.h"
#include "ipc_skeleton.h"
#include "json_utils.h"
#include "omsa_client_lite_api.h"
#include "vorn_log.h"
#include "vorn_metrics.h"
#include "vorn_sa_id.h"

namespace OHOS {
namespace Vorn {
namespace {
using OmsaCloud::EventTypeLite;
using OmsaCloud::OmsaClientLiteApi;
using OmsaCloud::OmsaConfigLite;
using OmsaCloud::TypeConfigLite;

constexpr const char *OMSA_CONFIG_PATH = "system/etc/tarnix/vorn_depot/omsa_config.json";
constexpr const char *COLLECT_URL_KEY = "collect_url";
constexpr const char *PACKAGE_NAME = "com.velmor.zul.networksdk";
constexpr const char *KIT_UID_KEY = "kitUid";

const std::string SERVICE_TAG = "vorn_service";
// Set with release once the set-up succeeded, read with acquire: whoever sees it set also sees
// the report executor made before it.
std::atomic<bool> g_inited {false};
std::mutex g_setupLock;
// Written only under the set-up lock and never after g_inited is set; read outside the lock
// only after g_inited was seen set.
std::shared_ptr<AsyncTaskExecutor> g_reportExecutor;
} // namespace

int32_t OMSAUtil::Init()
{
    VORN_LOGI("OmsaUtil Init enter");
    std::lock_guard<std::mutex> lock(g_setupLock);
    if (g_inited.load(std::memory_order_relaxed)) { // the lock orders this read
        VORN_LOGI("OmsaUtil Init already inited.");
        return 0;
    }
    if (g_reportExecutor == nullptr) {
        g_reportExecutor = std::make_shared<EventHandlerExecutor>(true);
    }
    auto typeConfig = std::make_shared<TypeConfigLite>();
    typeConfig->collectUrl = GetCollectUrl();
    OmsaConfigLite config;
    config.tag = SERVICE_TAG;
    config.packageName = PACKAGE_NAME;
    config.saId = VORN_SA_ID;
    config.maintenanceConfig = typeConfig;
    config.operationConfig = typeConfig;

    int32_t code = OmsaClientLiteApi::SetConfigOptions(config).code;
    if (code != 0) {
        VORN_LOGW("OmsaClientLiteApi::SetConfigOptions failed, ret: %{public}d", code);
        return code;
    }
    VORN_LOGI("OmsaClientLiteApi::SetConfigOptions success");
    g_inited.store(true, std::memory_order_release);
    return 0;
}

bool OMSAUtil::IsInited()
{
    return g_inited.load(std::memory_order_relaxed);
}

std::string OMSAUtil::GetCollectUrl()
{
    nlohmann::json json;
    JsonUtils::FileStatus status = JsonUtils::ReadFile(OMSA_CONFIG_PATH, json);
    if (status == JsonUtils::FileStatus::UNREADABLE) {
        VORN_LOGE("OMSAUtil read the omsa configure failed");
        return "";
    }
    if (status == JsonUtils::FileStatus::MALFORMED) {
        VORN_LOGE("OMSAUtil parse the omsa configure file failed.");
        return "";
    }
    try {
        if (json.is_object() && json.contains(COLLECT_URL_KEY)) {
            return json.at(COLLECT_URL_KEY).get<std::string>();
        }
    } catch (const nlohmann::json::exception &) {
        VORN_LOGE("OMSAUtil, Parse omsa config json catch exception");
    }
    return "";
}

void OMSAUtil::OnOmsaEvent(std::string eventId, std::string content)
{
    if (!g_inited.load(std::memory_order_acquire) && Init() != 0) {
        VORN_LOGW("OMSAUtil::OnOmsaEvent, not inited.");
        VornMetrics::Add(VornMetrics::Counter::EVENTS_DROPPED);
        return;
    }
    std::unordered_map<std::string, std::string> eventData = BaseEvent::EventDataJsonToMap(content);
    // The caller is only known on the IPC thread, never inside the posted task.
    eventData[KIT_UID_KEY] = std::to_string(IPCSkeleton::GetCallingUid());
    VORN_LOGI("OmsaClientCoreInnerApi OnOmsaEvent, eventid:%{public}s, content:%{private}s, kvCount:%{public}lu",
        eventId.c_str(), content.c_str(), static_cast<unsigned long>(eventData.size()));
    // The executor exists: it is created before the set-up can succeed and is never dropped.
    g_reportExecutor->PostTaskDelay([eventId = std::move(eventId),
                                        eventData = std::move(eventData)]() { OnEvent(eventId, eventData); },
        "", 0);
}

void OMSAUtil::OnEvent(std::string eventId, std::unordered_map<std::string, std::string> eventData)
{
    if (!g_inited.load(std::memory_order_acquire)) {
        VORN_LOGW("OnEvent OMSA not inited");
        VornMetrics::Add(VornMetrics::Counter::EVENTS_DROPPED);
        return;
    }
    if (OmsaClientLiteApi::OnEvent(SERVICE_TAG, EventTypeLite::OPERATION, eventId, eventData).code != 0) {
        VORN_LOGW("OMSA report failed");
        VornMetrics::Add(VornMetrics::Counter::EVENTS_DROPPED);
        return;
    }
    VornMetrics::Add(VornMetrics::Counter::EVENTS_REPORTED);
}
} // namespace Vorn
} // namespace OHOS
