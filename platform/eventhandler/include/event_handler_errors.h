#ifndef BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_HANDLER_ERRORS_H
#define BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_HANDLER_ERRORS_H

#include "errors.h"

namespace OHOS {
namespace AppExecFwk {
constexpr ErrCode EVENT_HANDLER_ERR_OFFSET = ErrCodeOffset(SUBSYS_APPEXECFWK, 0x10);

// Run() or Stop() on a runner that owns its thread.
constexpr ErrCode EVENT_HANDLER_ERR_RUNNER_NO_PERMIT = EVENT_HANDLER_ERR_OFFSET + 5;
// Run() while the runner is already running.
constexpr ErrCode EVENT_HANDLER_ERR_RUNNER_ALREADY = EVENT_HANDLER_ERR_OFFSET + 6;
} // namespace AppExecFwk
} // namespace OHOS

#endif // BASE_EVENTHANDLER_INTERFACES_INNER_API_EVENT_HANDLER_ERRORS_H
