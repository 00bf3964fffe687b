#include "inner_event.h"

namespace OHOS {
namespace AppExecFwk {
void InnerEvent::Drop(InnerEvent *event)
{
    delete event;
}

InnerEvent::Pointer InnerEvent::Get(const Callback &callback, const std::string &name, const Caller &caller)
{
    Pointer event(new InnerEvent(), Drop);
    event->taskCallback_ = callback;
    event->taskName_ = name;
    event->caller_ = caller;
    return event;
}
} // namespace AppExecFwk
} // namespace OHOS
