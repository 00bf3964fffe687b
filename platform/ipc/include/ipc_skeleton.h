#ifndef OHOS_IPC_IPC_SKELETON_H
#define OHOS_IPC_IPC_SKELETON_H

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "iremote_object.h"

namespace OHOS {
// Identity of the caller of the transaction being handled on this thread; outside of one, the
// identity of this process (as the platform reports itself when no call is in progress).
class IPCSkeleton {
public:
    IPCSkeleton() = default;
    ~IPCSkeleton() = default;

    static bool SetMaxWorkThreadNum(int maxThreadNum);
    static void JoinWorkThread();
    static void StopWorkThread();

    static pid_t GetCallingPid();
    static pid_t GetCallingRealPid();
    static pid_t GetCallingUid();
    static uint32_t GetCallingTokenID();
    static uint64_t GetCallingFullTokenID();
    static uint32_t GetFirstTokenID();
    static uint64_t GetFirstFullTokenID();
    static uint64_t GetSelfTokenID();
    static std::string GetLocalDeviceID();
    static std::string GetCallingDeviceID();
    static bool IsLocalCalling();

    static sptr<IRemoteObject> GetContextObject();
    static bool SetContextObject(sptr<IRemoteObject> &object);
    static int FlushCommands(IRemoteObject *object);

    static std::string ResetCallingIdentity();
    static bool SetCallingIdentity(std::string &identity, bool flag = false);
};
} // namespace OHOS

#endif // OHOS_IPC_IPC_SKELETON_H
