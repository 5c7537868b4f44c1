#include "plane/box.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace gridforge {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

void expectBox(const Box& box, double xmin, double ymin, double xmax, double ymax)
{
    EXPECT_EQ(box.xmin, xmin);
    EXPECT_EQ(box.ymin, ymin);
    EXPECT_EQ(box.xmax, xmax);
    EXPECT_EQ(box.ymax, ymax);
}

TEST(Box, IsAroundItsVertices)
{
    expectBox(boxAround(std::vector<double>{3, -1, 2}, std::vector<double>{5, 6, 4}), -1, 4, 3, 6);
}

TEST(Box, StaysAtItsFarthestWithoutVertices)
{
    expectBox(boxAround({}, {}, 10), 10, 10, -10, -10);
    expectBox(emptyBox(), kBoundless, kBoundless, -kBoundless, -kBoundless);
}

TEST(Box, TakesInNothingBeyondItsFarthest)
{
    expectBox(boxAround(std::vector<double>{20}, std::vector<double>{-20}, 10), 10, -20, 20, -10);
}

TEST(Box, LeavesNotANumberOut)
{
    expectBox(boxAround(std::vector<double>{kNan, 2, 1}, std::vector<double>{3, kNan, 4}), 1, 3, 2, 4);
}

TEST(ExtentOfRing, IsAroundItsVerticesAndZeroWithoutAny)
{
    expectBox(extentOfRing(std::vector<double>{3, -1, 2}, std::vector<double>{5, 6, 4}), -1, 4, 3, 6);
    expectBox(extentOfRing({}, {}), 0, 0, 0, 0);
}

TEST(ExtentOfRing, TakesNotANumberForABoundWhereItStandsFirst)
{
    const Box box = extentOfRing(std::vector<double>{kNan}, std::vector<double>{7});
    EXPECT_TRUE(std::isnan(box.xmin) && std::isnan(box.xmax));
    EXPECT_EQ(box.ymin, 7);
    EXPECT_EQ(box.ymax, 7);
}

TEST(Box, GrowsToHoldAnother)
{
    Box box{0, 0, 2, 2};
    takeIn({1, -1, 5, 1}, box);
    expectBox(box, 0, -1, 5, 2);
    takeIn(emptyBox(), box);
    expectBox(box, 0, -1, 5, 2);
    takeIn(-3, 7, box);
    expectBox(box, -3, -1, 5, 7);
}

} // namespace
} // namespace gridforge
