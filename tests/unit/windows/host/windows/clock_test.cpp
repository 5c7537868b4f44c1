#include "host/windows/clock.h"

#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

constexpr std::int64_t kSecond = 10'000'000; // in 100 nanoseconds
constexpr std::int64_t kDaysFrom1601To1970 =
    369 * 365 + 89; // leap years: 92 that 4 divides, without 1700, 1800 and 1900
constexpr std::int64_t kFrom1970 = kDaysFrom1601To1970 * 86'400 * kSecond;

TEST(Nanoseconds, CountFrom1970)
{
    EXPECT_EQ(nanosecondsFrom1970(kFrom1970), 0);
    EXPECT_EQ(nanosecondsFrom1970(kFrom1970 + 3), 300);
    EXPECT_EQ(nanosecondsFrom1970(kFrom1970 - kSecond), -1'000'000'000);
}

// A file system that keeps no time of the last change gives 0, which must not look like a time to come.
TEST(Nanoseconds, OfTimesThatTheyCannotCountAreTheFirstOrTheLast)
{
    const std::int64_t first = nanosecondsFrom1970(0);
    EXPECT_LT(first, -std::int64_t{290} * 365 * 86'400 * 1'000'000'000);
    EXPECT_EQ(nanosecondsFrom1970(1), first);
    EXPECT_EQ(nanosecondsFrom1970(std::numeric_limits<std::int64_t>::min()), first);
    EXPECT_EQ(nanosecondsFrom1970(std::numeric_limits<std::int64_t>::max()), -first);
}

TEST(WaitFor, WaitsAtLeastAMillisecondForAPartOfIt)
{
    const std::int64_t before = timeNow();
    for (int i = 0; i < 20; ++i) {
        waitFor(1);
    }
    EXPECT_GE(timeNow() - before, 10'000'000);
    waitFor(0);
    waitFor(-1);
}

} // namespace
} // namespace gridforge::test
