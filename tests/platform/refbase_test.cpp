#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "refbase.h"

namespace {
using OHOS::sptr;
using OHOS::wptr;

struct Events {
    std::atomic<int> firstStrong {0};
    std::atomic<int> lastStrong {0};
    std::atomic<int> destroyed {0};
};

class Tracked : public OHOS::RefBase {
public:
    explicit Tracked(Events &events, bool extended = false) : events_(events)
    {
        if (extended) {
            ExtendObjectLifetime();
        }
    }
    ~Tracked() override { events_.destroyed++; }
    void OnFirstStrongRef(const void *) override { events_.firstStrong++; }
    void OnLastStrongRef(const void *) override { events_.lastStrong++; }

private:
    Events &events_;
};

TEST(RefBaseTest, LastStrongReferenceDestroysObjectAndThenPromoteFails)
{
    Events events;
    sptr<Tracked> strong = new Tracked(events);
    EXPECT_EQ(events.firstStrong, 1);
    wptr<Tracked> weak = strong;
    {
        sptr<Tracked> promoted = weak.promote();
        ASSERT_NE(promoted, nullptr);
        EXPECT_EQ(strong->GetSptrRefCount(), 2);
    }
    EXPECT_EQ(events.destroyed, 0);
    strong = nullptr;
    EXPECT_EQ(events.lastStrong, 1);
    EXPECT_EQ(events.destroyed, 1);
    EXPECT_EQ(weak.promote(), nullptr);
    wptr<Tracked> copy = weak; // the bookkeeping outlives the object
    EXPECT_EQ(copy.promote(), nullptr);
}

TEST(RefBaseTest, PromoteRacingWithLastReleaseNeverResurrects)
{
    for (int round = 0; round < 2000; ++round) {
        Events events;
        sptr<Tracked> strong = new Tracked(events);
        wptr<Tracked> weak = strong;
        std::atomic<bool> promotedAlive {true};
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
