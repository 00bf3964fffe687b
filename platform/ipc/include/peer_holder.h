#ifndef OHOS_IPC_PEER_HOLDER_H
#define OHOS_IPC_PEER_HOLDER_H

#include "iremote_object.h"
#include "refbase.h"

namespace OHOS {
class PeerHolder {
protected:
    PeerHolder(const sptr<IRemoteObject> &object);
    virtual ~PeerHolder() = default;
    sptr<IRemoteObject> Remote();

private:
    const sptr<IRemoteObject> remoteObject_;
};
} // namespace OHOS

#endif // OHOS_IPC_PEER_HOLDER_H
