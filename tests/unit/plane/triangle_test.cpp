#include "plane/triangle.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace gridforge {
namespace {

// Corners (0,0) and (4,0), apex (2,4).
const Triangle kUpright{{0, 0}, {4, 0}, {2, 4}, 10, 18, 30};
// Corners (0,0) and (0,4), apex (4,2): the edge is upright.
const Triangle kSideways{{0, 0}, {0, 4}, {4, 2}, 10, 18, 30};

TEST(InterpolateTriangleApex, GivesTheCornersTheirValues)
{
    EXPECT_EQ(interpolateTriangleApex({0, 0}, kUpright), 10);
    EXPECT_EQ(interpolateTriangleApex({4, 0}, kUpright), 18);
    EXPECT_EQ(interpolateTriangleApex({2, 4}, kUpright), 30);
    EXPECT_EQ(interpolateTriangleApex({0, 0}, kSideways), 10);
    EXPECT_EQ(interpolateTriangleApex({0, 4}, kSideways), 18);
}

TEST(InterpolateTriangleApex, GoesAlongTheEdgeAndThenToTheApex)
{
    EXPECT_EQ(interpolateTriangleApex({1, 0}, kUpright), 12);   // a quarter of the edge
    EXPECT_EQ(interpolateTriangleApex({1.5, 2}, kUpright), 21); // cuts at (1,0): half way from 12 to 30
    EXPECT_EQ(interpolateTriangleApex({2, 2}, kUpright), 22);   // right under the apex: half way from 14 to 30
    EXPECT_EQ(interpolateTriangleApex({2, 2}, kSideways), 22);  // cuts at (0,2)
}

TEST(InterpolateTriangleApex, GoesByTheEdgeOfSlopeUnderTheApex)
{
    // Edge from (0,0) to (4,2), apex (2,5): straight below the apex the edge is at (2,1).
    EXPECT_EQ(interpolateTriangleApex({2, 3}, {{0, 0}, {4, 2}, {2, 5}, 10, 18, 30}), 22);
}

// Away from the origin, where no coordinate is nothing. Each point lies half way between the apex and its cut.
TEST(InterpolateTriangleApex, GoesByTheEdgeWhereverItLies)
{
    EXPECT_EQ(interpolateTriangleApex({11.5, 24}, {{10, 20}, {14, 22}, {11, 27}, 10, 18, 30}), 22); // cuts at (12,21)
    EXPECT_EQ(interpolateTriangleApex({12, 23}, {{10, 20}, {14, 22}, {12, 25}, 10, 18, 30}), 22);   // as well
    EXPECT_EQ(interpolateTriangleApex({12, 22}, {{10, 20}, {10, 24}, {14, 23}, 10, 18, 30}), 21);   // cuts at (10,21)
    EXPECT_EQ(interpolateTriangleApex({10, 18}, {{10, 20}, {10, 24}, {10, 16}, 10, 18, 30}), 20);   // at corner 1
}

TEST(InterpolateTriangleApex, OnTheApexOfAnUprightEdgeTakesTheApex)
{
    EXPECT_EQ(interpolateTriangleApex({4, 2}, kSideways), 30); // the cut is corner 1, the way there has length 0
}

TEST(InterpolateTriangleApex, ExtrapolatesOutside)
{
    EXPECT_EQ(interpolateTriangleApex({2, -4}, kUpright), -2); // twice the way from 30 through 14
    EXPECT_EQ(interpolateTriangleApex({6, 0}, kUpright), 22);  // one and a half times along the edge
}

TEST(InterpolateTriangleApex, TakesHalfWayWhereALengthIsNothing)
{
    // The edge is a point: half way between its values, then half way to the apex.
    EXPECT_EQ(interpolateTriangleApex({0, 2}, {{0, 0}, {0, 0}, {0, 4}, 10, 18, 30}), 22);
    // The apex lies on the cut: half way from there.
    EXPECT_EQ(interpolateTriangleApex({2, 0}, {{0, 0}, {4, 0}, {2, 0}, 10, 18, 30}), 22);
}

TEST(InterpolateTriangleApex, TheLimitOfLengthsIsSinglePrecisionWidened)
{
    const auto limit = static_cast<double>(1.0e-6F);
    ASSERT_NE(limit, 1.0e-6);
    // Edge of exactly the limit: a true ratio, 0 at corner 1. A hair shorter: half way.
    EXPECT_EQ(interpolateTriangleApex({0, 0}, {{0, 0}, {limit, 0}, {0, 4}, 10, 18, 30}), 10);
    EXPECT_EQ(interpolateTriangleApex({0, 0}, {{0, 0}, {std::nextafter(limit, 0.0), 0}, {0, 4}, 10, 18, 30}), 14);
}

TEST(InterpolateTriangleApex, RoundsRatiosToSinglePrecisionFirst)
{
    // A third of the edge: 1/3 in single precision times 3e7 in single precision, not in double.
    const float third = 1.0F / 3.0F;
    const volatile float product = 3.0e7F * third;
    EXPECT_EQ(interpolateTriangleApex({1, 0}, {{0, 0}, {3, 0}, {1, 4}, 0, 3.0e7F, 0}), product);
}

} // namespace
} // namespace gridforge
