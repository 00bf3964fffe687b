#include "inner_event.h"

namespace OHOS {
namespace AppExecFwk {
InnerEvent::Pointer InnerEvent::Make(const Caller &caller)
{
    Pointer event(new InnerEvent(), Drop);
    event->caller_ = caller;
    return event;
}

void InnerEvent::Drop(InnerEvent *event)
{
    delete event;
}

InnerEvent::Pointer InnerEvent::Get(uint32_t innerEventId, int64_t param, const Caller &caller)
{
    Pointer event = Make(caller);
    event->innerEventId_ = innerEventId;
    event->param_ = param;
    return event;
}

InnerEvent::Pointer InnerEvent::Get(const Callback &callback, const std::string &name, const Caller &caller)
{
    Pointer event = Make(caller);
    event->taskCallback_ = callback;
    event->taskName_ = name;
    return event;
}

InnerEvent::Pointer InnerEvent::Get()
{
    return Make(Caller());
}

std::future<void> InnerEvent::CreateWaiter()
{
    waiter_ = std::make_unique<std::promise<void>>();
    return waiter_->get_future();
}

void InnerEvent::NotifyWaiter()
{
    if (waiter_ != nullptr) {
        waiter_->set_value();
        waiter_.reset();
    }
}
} // namespace AppExecFwk
} // namespace OHOS
