#include "core/first_index.h"

#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

TEST(FirstThat, IsTheFirstOfThoseThatHold)
{
    for (std::int32_t wanted = -5; wanted <= 10; ++wanted) {
        EXPECT_EQ(firstThat(-5, 9, [&](std::int32_t k) { return k >= wanted; }), wanted); // 10 for none
    }
}

TEST(FirstThat, OfARangeWithoutNumbersIsTheOneAfterIt)
{
    EXPECT_EQ(firstThat(4, 3, [](std::int32_t) { return true; }), 4);
}

TEST(FirstThat, ReachesFromTheLeastNumberToTheGreatest)
{
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(firstThat(kLeast, kGreatest, [](std::int32_t k) { return k >= 7; }), 7);
    EXPECT_EQ(firstThat(kLeast, kGreatest, [](std::int32_t) { return false; }), std::int64_t{kGreatest} + 1);
}

} // namespace
} // namespace gridforge::test
