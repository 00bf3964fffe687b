#include "peer_holder.h"

namespace OHOS {
PeerHolder::PeerHolder(const sptr<IRemoteObject> &object) : remoteObject_(object) {}

sptr<IRemoteObject> PeerHolder::Remote()
{
    return remoteObject_;
}
} // namespace OHOS
