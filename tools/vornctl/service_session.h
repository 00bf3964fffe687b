#ifndef VORN_TOOLS_VORNCTL_SERVICE_SESSION_H
#define VORN_TOOLS_VORNCTL_SERVICE_SESSION_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ipc_host.h"
#include "iremote_object.h"
#include "raw_service_client.h"

namespace Vornctl {
using CallResult = VornTools::CallResult;

// The service as a client process reaches it on a device: its library loaded by the service
// host of this process, system ability 66054 started and its remote object taken from the
// system-ability manager. Calls carry the identity they are given, and are written by hand
// rather than through the client kit's proxy: the command line may choose any interface token
// and code, or no callback, so that the service's refusals can be seen too.
class ServiceSession {
public:
    // Loads the library with dlopen, so that its static registration runs as under the device's
    // service host. Null, with `error` set to one line, when the service cannot be had.
    static std::unique_ptr<ServiceSession> Open(const std::string &libraryPath, std::string &error);
    // libvorn_service.z.so in the build folder that holds this executable's folder.
    static std::string DefaultLibraryPath();

    // Takes a published remote object of the service; Open is the usual way to get one.
    explicit ServiceSession(OHOS::sptr<OHOS::IRemoteObject> service);

    CallResult Request(const HostPlatform::CallerIdentity &caller, const std::string &paramStr,
        const OHOS::sptr<OHOS::IRemoteObject> &callback, const std::u16string &descriptor, uint32_t code) const;
    CallResult Event(const HostPlatform::CallerIdentity &caller, const std::string &paramStr,
        const std::u16string &descriptor, uint32_t code) const;
    // The service's dump, as the platform's dump tool asks for it: the remote object's Dump,
    // which writes the text to `fd`. Returns the transaction result.
    int Dump(int fd, const std::vector<std::u16string> &args) const;

private:
    OHOS::sptr<OHOS::IRemoteObject> service_;
    VornTools::RawServiceClient raw_;
};
} // namespace Vornctl

#endif // VORN_TOOLS_VORNCTL_SERVICE_SESSION_H
