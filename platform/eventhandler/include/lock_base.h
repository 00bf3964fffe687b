#ifndef BASE_EVENTHANDLER_INTERFACES_INNER_API_LOCK_BASE_H
#define BASE_EVENTHANDLER_INTERFACES_INNER_API_LOCK_BASE_H

namespace OHOS {
namespace AppExecFwk {
// Kind of lock guarding a runner's queue; the host always uses a standard mutex.
enum class EventLockType {
    STANDARD,
    PRIORITY_INHERIT,
};
} // namespace AppExecFwk
} // namespace OHOS

#endif // BASE_EVENTHANDLER_INTERFACES_INNER_API_LOCK_BASE_H
