#ifndef HOST_PLATFORM_SAMGR_HOST_H
#define HOST_PLATFORM_SAMGR_HOST_H

// Host-only controls of the system-ability manager (for tests and tools, never the service).

#include <cstdint>

namespace HostPlatform {
// What a client sees when the process of a published ability dies on the device: the ability's
// object dies (proxies to it report dead, transactions fail, death recipients run) and the
// manager forgets it, so that a later lookup finds nothing until it is published again.
// False if nothing is published under the id.
bool KillSystemAbility(int32_t systemAbilityId);
} // namespace HostPlatform

#endif // HOST_PLATFORM_SAMGR_HOST_H
