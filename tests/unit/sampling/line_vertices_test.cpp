#include "sampling/line_vertices.h"

#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

TEST(LineAngle, EndsFollowTheirSegmentAndVerticesBetweenTheirNeighbours)
{
    const sampling::LineVertices line{{0, 2, 2}, {0, 0, 2}};
    EXPECT_EQ(sampling::lineAngle(line, 0), 0.0F);
    EXPECT_EQ(sampling::lineAngle(line, 1), 45.0F);
    EXPECT_EQ(sampling::lineAngle(line, 2), 90.0F);
}

TEST(LineAngle, ALineOfOneSegmentHasOneAngle)
{
    const sampling::LineVertices line{{0, -3}, {0, 0}};
    EXPECT_EQ(sampling::lineAngle(line, 0), 180.0F);
    EXPECT_EQ(sampling::lineAngle(line, 1), 180.0F);
    EXPECT_EQ(sampling::lineAngle({{5}, {7}}, 0), 0.0F);
}

} // namespace
} // namespace gridforge::test
