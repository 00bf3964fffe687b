#ifndef HIVIEWDFX_HILOG_CPP_H
#define HIVIEWDFX_HILOG_CPP_H

#include "hilog/log_c.h"

#ifdef __cplusplus
namespace OHOS {
namespace HiviewDFX {
// A typedef rather than the device's alias-declaration: GCC gives an unnamed struct named by
// `using` no linkage, which would make every HiLog function below internal to its caller.
typedef struct {
    LogType type;
    unsigned int domain;
    const char *tag;
} HiLogLabel;

class HiLog final {
public:
    static int Debug(const HiLogLabel &label, const char *fmt, ...);
    static int Info(const HiLogLabel &label, const char *fmt, ...);
    static int Warn(const HiLogLabel &label, const char *fmt, ...);
    static int Error(const HiLogLabel &label, const char *fmt, ...);
    static int Fatal(const HiLogLabel &label, const char *fmt, ...);
};
} // namespace HiviewDFX
} // namespace OHOS

#define HiLogDebug(label, fmt, ...) HILOG_IMPL(label.type, LOG_DEBUG, label.domain, label.tag, fmt, ##__VA_ARGS__)
#define HiLogInfo(label, fmt, ...) HILOG_IMPL(label.type, LOG_INFO, label.domain, label.tag, fmt, ##__VA_ARGS__)
#define HiLogWarn(label, fmt, ...) HILOG_IMPL(label.type, LOG_WARN, label.domain, label.tag, fmt, ##__VA_ARGS__)
#define HiLogError(label, fmt, ...) HILOG_IMPL(label.type, LOG_ERROR, label.domain, label.tag, fmt, ##__VA_ARGS__)
#define HiLogFatal(label, fmt, ...) HILOG_IMPL(label.type, LOG_FATAL, label.domain, label.tag, fmt, ##__VA_ARGS__)
#endif

#endif // HIVIEWDFX_HILOG_CPP_H
