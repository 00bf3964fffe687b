#include "vorn_sa.h"

#include "vorn_dumper.h"
#include "vorn_error_code.h"
#include "vorn_log.h"

namespace OHOS {
namespace Vorn {
// Registered when the library is loaded; the service host starts it as soon as it runs.
REGISTER_SYSTEM_ABILITY_BY_ID(VornSA, VORN_SA_ID, true);

VornSA::VornSA(int32_t systemAbilityId, bool runOnCreate) : SystemAbility(systemAbilityId, runOnCreate), VornSAStub()
{
    VORN_LOGI("VornSA create with params.");
}

void VornSA::OnStart()
{
    if (state_.load(std::memory_order_relaxed) == ServiceState::RUNNING) {
        VORN_LOGE("VORN SA is already running.");
        return;
    }
    if (Init() != SUCCESS) {
        return;
    }
    VORN_LOGI("Start VORN service success.");
}

int32_t VornSA::Init()
{
    if (!Publish(sptr<IRemoteObject>(this))) {
        VORN_LOGE("VORN service init failed.");
        return ERR_SERVICE_INTERNAL;
    }
    VORN_LOGI("VORN service init Success.");
    state_.store(ServiceState::RUNNING, std::memory_order_relaxed);
    return SUCCESS;
}

void VornSA::OnStop()
{
    if (state_.load(std::memory_order_relaxed) != ServiceState::RUNNING) {
        return;
    }
    // Pools, analytics and requests in flight are left alone: they finish on their own.
    state_.store(ServiceState::NOT_RUNNING, std::memory_order_relaxed);
    VORN_LOGI("Stop success.");
}

int VornSA::Dump(int fd, const std::vector<std::u16string> &args)
{
    const bool running = state_.load(std::memory_order_relaxed) == ServiceState::RUNNING;
    if (!VornDumper::Write(fd, VornDumper::Render(args, running))) {
        VORN_LOGE("VornSA::Dump write failed");
        return ERR_SERVICE_INTERNAL;
    }
    return SUCCESS;
}
} // namespace Vorn
} // namespace OHOS
