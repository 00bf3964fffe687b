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

size_t EventQueue::RemoveIf(const std::function<bool(const InnerEvent &)> &match)
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
    return dropped.size();
}

size_t EventQueue::Remove(const std::weak_ptr<EventHandler> &owner)
{
    return RemoveIf([&owner](const InnerEvent &event) { return SameOwner(event.GetWeakOwner(), owner); });
}

size_t EventQueue::Remove(const std::weak_ptr<EventHandler> &owner, uint32_t innerEventId)
{
    return RemoveIf([&owner, innerEventId](const InnerEvent &event) {
        return !event.HasTask() && event.GetInnerEventId() == innerEventId && SameOwner(event.GetWeakOwner(), owner);
    });
}

size_t EventQueue::Remove(const std::weak_ptr<EventHandler> &owner, uint32_t innerEventId, int64_t param)
{
    return RemoveIf([&owner, innerEventId, param](const InnerEvent &event) {
        return !event.HasTask() && event.GetInnerEventId() == innerEventId && event.GetParam() == param &&
            SameOwner(event.GetWeakOwner(), owner);
    });
}

size_t EventQueue::Remove(const std::weak_ptr<EventHandler> &owner, const std::string &name)
{
    return RemoveIf([&owner, &name](const InnerEvent &event) {
        return event.HasTask() && event.GetTaskName() == name && SameOwner(event.GetWeakOwner(), owner);
    });
}

void EventQueue::RemoveAll()
{
    RemoveIf([](const InnerEvent &) { return true; });
}

bool EventQueue::HasInnerEvent(const std::weak_ptr<EventHandler> &owner, uint32_t innerEventId)
{
    std::lock_guard<std::mutex> lock(mutex_);
    for (const Level &level : levels_) {
        for (const auto &entry : level) {
            const InnerEvent &event = *entry.second;
            if (!event.HasTask() && event.GetInnerEventId() == innerEventId &&
                SameOwner(event.GetWeakOwner(), owner)) {
                return true;
            }
        }
    }
    return false;
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

bool EventQueue::IsIdle()
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (handling_) {
        return false;
    }
    InnerEvent::Clock::time_point now = InnerEvent::Clock::now();
    return std::none_of(levels_.begin(), levels_.end(),
        [now](const Level &level) { return !level.empty() && level.begin()->first.first <= now; });
}

bool EventQueue::IsQueueEmpty()
{
    std::lock_guard<std::mutex> lock(mutex_);
    return std::all_of(levels_.begin(), levels_.end(), [](const Level &level) { return level.empty(); });
}
} // namespace AppExecFwk
} // namespace OHOS
