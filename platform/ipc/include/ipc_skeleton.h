#ifndef OHOS_IPC_IPC_SKELETON_H
#define OHOS_IPC_IPC_SKELETON_H

#include <sys/types.h>

#include <cstdint>

namespace OHOS {
// Identity of the caller of the transaction being handled on this thread; outside of one, the
// identity of this process (as the platform reports itself when no call is in progress).
class IPCSkeleton {
public:
    IPCSkeleton() = default;
    ~IPCSkeleton() = default;

    static pid_t GetCallingUid();
    static uint32_t GetCallingTokenID();
    static uint64_t GetCallingFullTokenID();
};
} // namespace OHOS

#endif // OHOS_IPC_IPC_SKELETON_H
