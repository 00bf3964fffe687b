#include "service_call.h"

#include "i_vorn_sa_interface.h"
#include "string_ex.h"

namespace Vornctl {
namespace {
HostPlatform::CallerIdentity IdentityFor(CallerKind kind, pid_t uid)
{
    switch (kind) {
        case CallerKind::SYSTEM_APP:
            return HostPlatform::SystemAppCaller(uid);
        case CallerKind::APP:
            return HostPlatform::AppCaller(uid);
        case CallerKind::NATIVE:
            break;
    }
    return HostPlatform::NativeCaller(uid);
}
} // namespace

CallSettings CallSettingsFor(const CommandLine &line)
{
    CallSettings settings;
    settings.caller = IdentityFor(line.caller, line.uid);
    settings.descriptor = line.descriptor ? OHOS::Str8ToStr16(*line.descriptor)
                                          : std::u16string(OHOS::Vorn::IVornSAInterface::GetDescriptor());
    settings.code = line.code;
    return settings;
}
} // namespace Vornctl
