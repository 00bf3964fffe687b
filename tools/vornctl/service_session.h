#ifndef VORN_TOOLS_VORNCTL_SERVICE_SESSION_H
#define VORN_TOOLS_VORNCTL_SERVICE_SESSION_H

#include <cstdint>
#include <memory>
#include <string>

#include "ipc_host.h"
#include "iremote_object.h"
#include "service_client.h"

namespace Vornctl {
// The service as a client process reaches it on a device: its library loaded by the service
// host of this process, system ability 66054 started and its remote object taken from the
// system-ability manager. Calls carry the identity they are given.
class ServiceSession {
public:
    // Loads the library with dlopen, so that its static registration runs as under the device's
    // service host. Null, with `error` set to one line, when the service cannot be had.
    static std::unique_ptr<ServiceSession> Open(const std::string &libraryPath, std::string &error);
    // libvorn_service.z.so in the build folder that holds this executable's folder.
    static std::string DefaultLibraryPath();

    // Takes a published remote object of the service; Open is the usual way to get one.
    explicit ServiceSession(OHOS::sptr<OHOS::IRemoteObject> service);

    VornClient::CallResult Request(const HostPlatform::CallerIdentity &caller, const std::string &paramStr,
        const OHOS::sptr<OHOS::IRemoteObject> &callback, const std::u16string &descriptor, uint32_t code) const;
    VornClient::CallResult Event(const HostPlatform::CallerIdentity &caller, const std::string &paramStr,
        const std::u16string &descriptor, uint32_t code) const;

private:
    VornClient::ServiceClient client_;
};
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_SERVICE_SESSION_H
