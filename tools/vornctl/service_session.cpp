#include "service_session.h"

#include <dlfcn.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "service_ability.h"

namespace Vornctl {
namespace {
constexpr char LIBRARY_NAME[] = "libvorn_service.z.so";
} // namespace

std::unique_ptr<ServiceSession> ServiceSession::Open(const std::string &libraryPath, std::string &error)
{
    // RTLD_GLOBAL as the service host loads it. The handle is never closed: the service's pools
    // keep running on threads that execute its code until the process ends.
    if (dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_GLOBAL) == nullptr) {
        const char *reason = dlerror();
        error = "cannot load the service library: " + std::string(reason != nullptr ? reason : libraryPath);
        return nullptr;
    }
    OHOS::sptr<OHOS::IRemoteObject> service = VornTools::StartServiceAbility(error);
    if (service == nullptr) {
        error = libraryPath + ": " + error;
        return nullptr;
    }
    return std::make_unique<ServiceSession>(std::move(service));
}

std::string ServiceSession::DefaultLibraryPath()
{
    std::error_code ignored;
    std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", ignored);
    return (executable.parent_path().parent_path() / LIBRARY_NAME).string();
}

ServiceSession::ServiceSession(OHOS::sptr<OHOS::IRemoteObject> service) : service_(service), raw_(std::move(service)) {}

CallResult ServiceSession::Request(const HostPlatform::CallerIdentity &caller, const std::string &paramStr,
    const OHOS::sptr<OHOS::IRemoteObject> &callback, const std::u16string &descriptor, uint32_t code) const
{
    HostPlatform::ScopedCallerIdentity identity(caller);
    return raw_.Request(paramStr, callback, descriptor, code);
}

CallResult ServiceSession::Event(const HostPlatform::CallerIdentity &caller, const std::string &paramStr,
    const std::u16string &descriptor, uint32_t code) const
{
    HostPlatform::ScopedCallerIdentity identity(caller);
    return raw_.Event(paramStr, descriptor, code);
}

int ServiceSession::Dump(int fd, const std::vector<std::u16string> &args) const
{
    return service_->Dump(fd, args);
}
} // namespace Vornctl
