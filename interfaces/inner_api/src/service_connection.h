#ifndef VORN_INNER_API_SERVICE_CONNECTION_H
#define VORN_INNER_API_SERVICE_CONNECTION_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "i_vorn_sa_interface.h"
#include "iremote_object.h"
#include "pending_request.h"
#include "vorn_request_callback_stub.h"

namespace OHOS {
namespace Vorn {
// The client's link to the service: the cached proxy, the death recipient watching it and the
// requests that must hear of its death. One lock guards all three; nothing is called on the
// service or the system-ability manager while it is held.
class ServiceConnection : public std::enable_shared_from_this<ServiceConnection> {
public:
    explicit ServiceConnection(int32_t loadTimeoutSeconds);
    ~ServiceConnection();

    // The service's proxy, connecting first when none is kept; null when the service cannot be
    // had. `generation` names the connection, for Watch.
    sptr<IVornSAInterface> Get(uint64_t &generation);
    // Keeps a request accepted through connection `generation` until its window passes. If
    // that connection has died in the meantime, the request is told so at once.
    void Watch(uint64_t generation, const std::shared_ptr<PendingRequest> &request,
        const sptr<VornRequestCallbackStub> &callback);

private:
    class DeathRecipient;
    struct Watched {
        std::shared_ptr<PendingRequest> request;
        // Kept for the window, whatever the platform does with the service's reference to it.
        sptr<VornRequestCallbackStub> callback;
    };

    sptr<IRemoteObject> FindService() const;
    void OnServiceDied(const IRemoteObject *object);

    const int32_t loadTimeoutSeconds_;
    std::mutex mutex_;
    sptr<IVornSAInterface> proxy_;
    sptr<IRemoteObject::DeathRecipient> recipient_;
    uint64_t generation_ = 0;
    std::vector<Watched> watched_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_SERVICE_CONNECTION_H
