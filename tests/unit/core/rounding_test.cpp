#include "core/rounding.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace gridforge {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMinInt = std::numeric_limits<std::int32_t>::min();

TEST(RealToInteger, GoesTheWayOfItsName)
{
    EXPECT_EQ(truncateToInt(2.9), 2);
    EXPECT_EQ(truncateToInt(-2.9), -2);
    EXPECT_EQ(roundToInt(2.5), 3);
    EXPECT_EQ(roundToInt(-2.5), -3) << "halves go away from zero";
    EXPECT_EQ(roundToInt(3.5), 4);
    EXPECT_EQ(roundToInt(2.4999999999999996), 2);
    EXPECT_EQ(roundToInt(0.49999999999999994), 0) << "adding a half would give 1";
    EXPECT_EQ(ceilToInt(2.1), 3);
    EXPECT_EQ(ceilToInt(-2.9), -2);
    EXPECT_EQ(floorToInt(2.9), 2);
    EXPECT_EQ(floorToInt(-2.1), -3);
}

TEST(RealToInteger, HoldsAtTheLimits)
{
    for (const auto toInt : {truncateToInt, roundToInt, ceilToInt, floorToInt}) {
        EXPECT_EQ(toInt(1e10), kMaxInt);
        EXPECT_EQ(toInt(-1e10), kMinInt);
        EXPECT_EQ(toInt(kInf), kMaxInt);
        EXPECT_EQ(toInt(-kInf), kMinInt);
        EXPECT_EQ(toInt(kNan), 0);
        EXPECT_EQ(toInt(2147483647.0), kMaxInt);
        EXPECT_EQ(toInt(-2147483648.0), kMinInt);
        EXPECT_EQ(toInt(2147483648.0), kMaxInt);
        EXPECT_EQ(toInt(-2147483649.0), kMinInt);
        EXPECT_EQ(toInt(2147483646.0), kMaxInt - 1);
    }
    EXPECT_EQ(truncateToInt(2147483646.9), kMaxInt - 1);
    EXPECT_EQ(ceilToInt(2147483646.1), kMaxInt);
}

} // namespace
} // namespace gridforge
