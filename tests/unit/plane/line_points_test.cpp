#include "plane/line_points.h"

#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

TEST(PointsToInsert, AreAsManyAsWholeSpacingsInALongerSegment)
{
    EXPECT_EQ(pointsToInsert(0, 5, 10, 5, 10.0F), 0); // exactly the spacing
    EXPECT_EQ(pointsToInsert(0, 0, 0, 25, 10.0F), 2);
    EXPECT_EQ(pointsToInsert(0, 0, 3, 4, 2.5F), 2); // 5 is twice the spacing: two points, so thirds
}

TEST(PointsToInsert, AreNoneWithoutALengthOrASpacing)
{
    EXPECT_EQ(pointsToInsert(3, 4, 3, 4, 0.0F), 0);
    EXPECT_EQ(pointsToInsert(0, 0, 12, 0, -1.0F), 0);
    EXPECT_EQ(pointsToInsert(0, 0, 12, 0, std::numeric_limits<float>::quiet_NaN()), 0);
}

TEST(PerpendicularAngle, IsA90DegreesTurnToTheLeft)
{
    EXPECT_EQ(perpendicularAngle(0.0F), 90.0F);
    EXPECT_EQ(perpendicularAngle(180.0F), 270.0F);
    EXPECT_EQ(perpendicularAngle(-135.0F), -45.0F);
    EXPECT_EQ(perpendicularAngle(271.0F), 1.0F);
    EXPECT_EQ(perpendicularAngle(270.0F), 360.0F);
}

} // namespace
} // namespace gridforge::test
