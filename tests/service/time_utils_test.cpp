#include <chrono>
#include <cstdint>

#include <gtest/gtest.h>

#include "time_utils.h"

using namespace OHOS::Vorn;

TEST(TimeUtilsTest, MillisecondsOfTheWallClock)
{
    using std::chrono::duration_cast;
    using std::chrono::milliseconds;
    const auto before = duration_cast<milliseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    const int64_t now = TimeUtils::GetTimeMills();
    const auto after = duration_cast<milliseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    EXPECT_LE(before, now);
    EXPECT_LE(now, after);
}
