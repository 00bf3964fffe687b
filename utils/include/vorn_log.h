#ifndef VORN_UTILS_VORN_LOG_H
#define VORN_UTILS_VORN_LOG_H

#include "hilog/log.h"

namespace OHOS {
namespace Vorn {
constexpr unsigned int VORN_LOG_DOMAIN = 0xD005540;
// Service host, IPC front, engine, transport and analytics log under this tag...
constexpr const char *VORN_SERVICE_TAG = "VornService";
// ...executors, file utilities and event flattening under this one.
constexpr const char *VORN_COMMON_TAG = "VornCommon";
} // namespace Vorn
} // namespace OHOS

// The format is part of __VA_ARGS__ so that a call without arguments stays valid ISO C++.
#define VORN_LOG(level, tag, ...) ((void)HiLogPrint(LOG_CORE, level, OHOS::Vorn::VORN_LOG_DOMAIN, tag, __VA_ARGS__))

#define VORN_LOGI(...) VORN_LOG(LOG_INFO, OHOS::Vorn::VORN_SERVICE_TAG, __VA_ARGS__)
#define VORN_LOGW(...) VORN_LOG(LOG_WARN, OHOS::Vorn::VORN_SERVICE_TAG, __VA_ARGS__)
#define VORN_LOGE(...) VORN_LOG(LOG_ERROR, OHOS::Vorn::VORN_SERVICE_TAG, __VA_ARGS__)

#define VORN_COMMON_LOGI(...) VORN_LOG(LOG_INFO, OHOS::Vorn::VORN_COMMON_TAG, __VA_ARGS__)
#define VORN_COMMON_LOGW(...) VORN_LOG(LOG_WARN, OHOS::Vorn::VORN_COMMON_TAG, __VA_ARGS__)
#define VORN_COMMON_LOGE(...) VORN_LOG(LOG_ERROR, OHOS::Vorn::VORN_COMMON_TAG, __VA_ARGS__)

#endif // VORN_UTILS_VORN_LOG_H
