#ifndef VORN_SERVICE_VORN_SA_H
#define VORN_SERVICE_VORN_SA_H

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "system_ability.h"
#include "vorn_sa_id.h"
#include "vorn_sa_stub.h"

namespace OHOS {
namespace Vorn {
// The system ability: one object that the platform's service host starts and stops, and that
// clients reach as the service's remote object.
class VornSA : public SystemAbility, public VornSAStub {
    DECLARE_SYSTEM_ABILITY(VornSA);

public:
    VornSA(int32_t systemAbilityId, bool runOnCreate);
    ~VornSA() override = default;

    void OnStart() override;
    void OnStop() override;
    int32_t Init();
    // The platform's dump tool calls this with the file descriptor to write to.
    int Dump(int fd, const std::vector<std::u16string> &args) override;

private:
    enum class ServiceState : int32_t {
        NOT_RUNNING = 0,
        RUNNING = 1,
    };

    std::atomic<ServiceState> state_ {ServiceState::NOT_RUNNING};
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_SERVICE_VORN_SA_H
