#ifndef VORN_TOOLS_SERVICE_ABILITY_H
#define VORN_TOOLS_SERVICE_ABILITY_H

#include <string>

#include "iremote_object.h"

namespace VornTools {
// Starts the service's system ability in this process, as the device's service host does once it
// has loaded the library, and takes its remote object from the system-ability manager. The
// library must already be loaded (linked, or by dlopen): its load-time registration is what
// creates the ability. Null, with `error` set to one line, when the service cannot be had.
OHOS::sptr<OHOS::IRemoteObject> StartServiceAbility(std::string &error);
} // namespace VornTools

#endif // VORN_TOOLS_SERVICE_ABILITY_H
