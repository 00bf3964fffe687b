#include "event_queue.h"

#include <algorithm>
#include <vector>

#include "runner_activity.h"

namespace OHOS {
namespace AppExecFwk {
namespace {
bool SameOwner(const std::weak_ptr<EventHandler> &lhs, const std::weak_ptr<EventHandler> &rhs)
{
    return !lhs.owner_before(rhs) && !rhs.owner_before(lhs);
}

InnerEvent::Pointer NoEvent()
{
    return InnerEvent::Pointer(nullptr, [](InnerEvent *) {});
}
} // namespace

EventQueue::~EventQueue()
{
    RemoveAll();
    std::lock_guard<std::mutex> lock(mutex_);
    EndHandling();
}

void EventQueue::Insert(InnerEvent::Pointer &event, Priority priority)
{
    if (event == nullptr) {
        return;
    }
    size_t level = std::min(static_cast<size_t>(priority), PRIORITY_COUNT - 1);
    std::lock_guard<std::mutex> lock(mutex_);
    Key key(event->GetHandleTime(), nextSequence_++);
    levels_[level].emplace(key, std::move(event));
    RunnerActivity::Instance().Add(1);
    changed_.notify_one();
}

void EventQueue::RemoveIf(const std::function<bool(const InnerEvent &)> &match)
{
    // Declared before the lock so that the dropped events, whose callbacks may do anything,
    // are destroyed after it is released.
    std::vector<InnerEvent::Pointer> dropped;
    std::lock_guard<std::mutex> lock(mutex_);
    for (Level &level : levels_) {
        for (auto it = level.begin(); it != level.end();) {
            if (match(*it->second)) {
                dropped.push_back(std::move(it->second));
                it = level.erase(it);
            } else {
                ++it;
            }
        }
    }
    RunnerActivity::Instance().Remove(dropped.size());
}

void EventQueue::Remove(const std::weak_ptr<EventHandler> &owner)
{
    RemoveIf([&owner](const InnerEvent &event) { return SameOwner(event.GetWeakOwner(), owner); });
}

void EventQueue::Remove(const std::weak_ptr<EventHandler> &owner, const std::string &name)
{
    RemoveIf([&owner, &name](const InnerEvent &event) {
        return event.GetTaskName() == name && SameOwner(event.GetWeakOwner(), owner);
    });
}

void EventQueue::RemoveAll()
{
    RemoveIf([](const InnerEvent &) { return true; });
}

InnerEvent::Pointer EventQueue::GetEvent()
{
    std::unique_lock<std::mutex> lock(mutex_);
    EndHandling();
    while (!finished_) {
        InnerEvent::TimePoint nextDue = InnerEvent::TimePoint::max();
        InnerEvent::Pointer event = TakeDue(InnerEvent::Clock::now(), nextDue);
        if (event != nullptr) {
            handling_ = true;
            return event;
        }
        if (nextDue == InnerEvent::TimePoint::max()) {
            changed_.wait(lock);
        } else {
            changed_.wait_until(lock, nextDue);
        }
    }
    return NoEvent();
}

InnerEvent::Pointer EventQueue::TakeDue(InnerEvent::TimePoint now, InnerEvent::TimePoint &nextDue)
{
    for (Level &level : levels_) {
        if (level.empty()) {
            continue;
        }
        auto first = level.begin();
        if (first->first.first <= now) {
            InnerEvent::Pointer event = std::move(first->second);
            level.erase(first);
            return event;
        }
        nextDue = std::min(nextDue, first->first.first);
    }
    return NoEvent();
}

void EventQueue::EndHandling()
{
    if (handling_) {
        handling_ = false;
        RunnerActivity::Instance().Remove(1);
    }
}

void EventQueue::Prepare()
{
    std::lock_guard<std::mutex> lock(mutex_);
    finished_ = false;
}

void EventQueue::Finish()
{
    std::lock_guard<std::mutex> lock(mutex_);
    finished_ = true;
    changed_.notify_all();
}
} // namespace AppExecFwk
} // namespace OHOS
