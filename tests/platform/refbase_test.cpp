#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "refbase.h"

namespace {
using OHOS::sptr;
using OHOS::wptr;

struct Events {
    std::atomic<int> firstStrong{0};
    std::atomic<int> lastStrong{0};
    std::atomic<int> destroyed{0};
};

class Tracked : public OHOS::RefBase {
public:
    explicit Tracked(Events &events, bool extended = false) : events_(events)
    {
        if (extended) {
            ExtendObjectLifetime();
        }
    }
    ~Tracked() override
    {
        events_.destroyed++;
    }
    void OnFirstStrongRef(const void *) override
    {
        events_.firstStrong++;
    }
    void OnLastStrongRef(const void *) override
    {
        events_.lastStrong++;
    }

private:
    Events &events_;
};

class Derived : public Tracked {
public:
    using Tracked::Tracked;
};

TEST(RefBaseTest, LastStrongReferenceDestroysObject)
{
    Events events;
    sptr<Tracked> first = new Tracked(events);
    EXPECT_EQ(first->GetSptrRefCount(), 1);
    EXPECT_EQ(events.firstStrong, 1);
    {
        sptr<Tracked> second = first;
        EXPECT_EQ(first->GetSptrRefCount(), 2);
    }
    EXPECT_EQ(events.destroyed, 0);
    first = nullptr;
    EXPECT_EQ(events.lastStrong, 1);
    EXPECT_EQ(events.destroyed, 1);
}

TEST(RefBaseTest, ObjectThatNeverHadStrongReferenceIsLeftToItsOwner)
{
    Events events;
    {
        Tracked onStack(events);
        EXPECT_EQ(onStack.GetSptrRefCount(), INITIAL_PRIMARY_VALUE);
        wptr<Tracked> weak = &onStack;
        EXPECT_EQ(weak.GetRefPtr(), &onStack);
    }
    EXPECT_EQ(events.destroyed, 1); // by the stack, not by the weak reference going away
}

TEST(RefBaseTest, PromoteSucceedsWhileAliveAndFailsAfterDeath)
{
    Events events;
    sptr<Tracked> strong = new Tracked(events);
    wptr<Tracked> weak = strong;
    {
        sptr<Tracked> promoted = weak.promote();
        ASSERT_NE(promoted, nullptr);
        EXPECT_EQ(strong->GetSptrRefCount(), 2);
    }
    strong = nullptr;
    EXPECT_EQ(events.destroyed, 1);
    EXPECT_EQ(weak.promote(), nullptr);
    wptr<Tracked> copy = weak; // the bookkeeping outlives the object
    EXPECT_EQ(copy.promote(), nullptr);
}

TEST(RefBaseTest, ExtendedLifetimeFollowsWeakReferences)
{
    Events events;
    wptr<Tracked> weak;
    {
        sptr<Tracked> strong = new Tracked(events, true);
        weak = strong;
    }
    EXPECT_EQ(events.lastStrong, 1);
    EXPECT_EQ(events.destroyed, 0);
    sptr<Tracked> revived = weak.promote();
    ASSERT_NE(revived, nullptr);
    EXPECT_EQ(events.firstStrong, 2);
    revived = nullptr;
    weak = nullptr;
    EXPECT_EQ(events.destroyed, 1);
}

TEST(SptrTest, ConversionsComparisonsAndMoves)
{
    Events events;
    sptr<Derived> derived = sptr<Derived>::MakeSptr(events);
    sptr<Tracked> base = derived;
    EXPECT_EQ(base, derived.GetRefPtr());
    EXPECT_TRUE(base == static_cast<Tracked *>(derived.GetRefPtr()));
    EXPECT_EQ(base->GetSptrRefCount(), 2);

    sptr<Tracked> moved = std::move(base);
    EXPECT_EQ(base, nullptr);
    EXPECT_FALSE(base);
    EXPECT_TRUE(moved);
    EXPECT_EQ(moved->GetSptrRefCount(), 2);

    wptr<Tracked> weak = derived;
    EXPECT_TRUE(moved == weak);
    sptr<Tracked> assigned;
    assigned = weak;
    EXPECT_EQ(assigned, moved);
    EXPECT_EQ(moved->GetSptrRefCount(), 3);

    derived = nullptr;
    moved.clear();
    assigned = nullptr;
    EXPECT_EQ(events.destroyed, 1);
}

TEST(RefBaseTest, ConcurrentCopiesKeepTheCountExact)
{
    Events events;
    sptr<Tracked> shared = new Tracked(events);
    wptr<Tracked> weak = shared;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&shared, &weak] {
            for (int i = 0; i < 20000; ++i) {
                sptr<Tracked> copy = shared;
                sptr<Tracked> promoted = weak.promote();
                ASSERT_NE(promoted, nullptr);
            }
        });
    }
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(shared->GetSptrRefCount(), 1);
    EXPECT_EQ(events.destroyed, 0);
    shared = nullptr;
    EXPECT_EQ(events.destroyed, 1);
}

// A promotion racing with the last release either wins (and keeps the object alive) or fails;
// the object is destroyed exactly once either way.
TEST(RefBaseTest, PromoteRacingWithLastReleaseNeverResurrects)
{
    for (int round = 0; round < 2000; ++round) {
        Events events;
        sptr<Tracked> strong = new Tracked(events);
        wptr<Tracked> weak = strong;
        std::atomic<bool> promotedAlive{true};
        std::thread promoter([&weak, &events, &promotedAlive] {
            sptr<Tracked> promoted = weak.promote();
            if (promoted != nullptr && events.destroyed != 0) {
                promotedAlive = false;
            }
        });
        strong = nullptr;
        promoter.join();
        EXPECT_TRUE(promotedAlive);
        ASSERT_EQ(events.destroyed, 1);
    }
}
} // namespace
