#include "exports/plane_for_callers.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <vector>

namespace gridforge::exports {
namespace {

using Single3 = std::array<float, 3>;
using Double3 = std::array<double, 3>;

// --- Points and segments ---------------------------------------------------------------------------------------------

TEST(Angles, BetweenTwoSegments)
{
    EXPECT_EQ(ANGLE2D(0, 0, 1, 0, 0, 0, 1, 1), 45.0F);
    EXPECT_EQ(ANGLE2D(5, 5, 6, 6, 2, 0, 3, 0), 45.0F);
    EXPECT_EQ(ANGLE2D(2, 0, 3, 0, 5, 4, 6, 5), 45.0F);
    // Directions 135 and -135 degrees: 270 apart, so 90.
    EXPECT_EQ(ANGLE2D(0, 0, -1, 1, 0, 0, -1, -1), 90.0F);
    // Directions 90 and -90 degrees, and a tenth beyond each of them.
    const double tenth = std::tan(0.1 * std::numbers::pi / 180);
    EXPECT_NEAR(ANGLE2D(0, 0, -tenth, 1, 0, 0, -tenth, -1), 179.8F, 1e-3F);
    EXPECT_EQ(ANGLE2D(0, 0, 1, 0, 0, 0, -1, 0), 180.0F);
}

TEST(Angles, AnUprightSegmentHasNone)
{
    EXPECT_EQ(ANGLE2D(0, 0, 0, 1, 0, 0, 1, 0), 0.0F);
    EXPECT_EQ(ANGLE2D(0, 0, 1, 0, 3, 0, 3, 9), 0.0F);
    EXPECT_EQ(ANGLE2D(0, 0, 5e-7, 1, 0, 0, 1, 0), 0.0F);
    // 1e-6 as a single lies a little below 1e-6: this spread is not below it, though it is below 1e-6.
    EXPECT_GT(ANGLE2D(0, 0, 9.99999998e-7, 1, 0, 0, 1, 0), 89.0F);
}

TEST(SamePoint, ComparesEachAxisStrictly)
{
    EXPECT_TRUE(SAME_POINT(1, 1, 1.25F, 0.75F, 0.5F));
    EXPECT_FALSE(SAME_POINT(1, 1, 1.5F, 1, 0.5F));
    EXPECT_FALSE(SAME_POINT(1, 1, 1, 0.5F, 0.5F));
    EXPECT_TRUE(SAME_POINT_8(1, 1, 1.25, 0.75, 0.5));
    EXPECT_FALSE(SAME_POINT_8(1, 1, 1.5, 1, 0.5));
    EXPECT_FALSE(SAME_POINT_8(1, 1, 1, 0.5, 0.5));
}

TEST(IntersectPoint, AsksForTheWholeLine)
{
    EXPECT_TRUE(INTERSECT_POINT(0, 0, 2, 2, 1, 1));
    EXPECT_TRUE(INTERSECT_POINT(0, 0, 2, 2, 5, 5));
    EXPECT_FALSE(INTERSECT_POINT(0, 0, 2, 2, 1, 1.5F));
}

TEST(VectorMagnitude, IsZeroForTinyComponents)
{
    EXPECT_EQ(VECTOR_MAGNITUDE(3, -4), 5.0F);
    EXPECT_EQ(VECTOR_MAGNITUDE(1e-6F, -1e-6F), 0.0F);
    EXPECT_EQ(VECTOR_MAGNITUDE(0, 0), 0.0F);
    EXPECT_FLOAT_EQ(VECTOR_MAGNITUDE(2e-6F, 0), 2e-6F);
}

// --- Regions ---------------------------------------------------------------------------------------------------------

TEST(IsWholeRegion, RingsThatEndBeforeTheVerticesAreReported)
{
    const std::vector<std::int32_t> ir = {5, 11};
    EXPECT_TRUE(isWholeRegion(12, ir, 2));
    EXPECT_FALSE(isWholeRegion(12, ir, 1));
    EXPECT_FALSE(isWholeRegion(12, ir, 0));
    EXPECT_TRUE(isWholeRegion(6, ir, 1));
    EXPECT_TRUE(isWholeRegion(0, {}, 0));
}

TEST(PolygonArea, IsThatOfTheRingEitherWayRound)
{
    EXPECT_EQ(POLYGON_AREA(std::vector<double>{0, 10, 10, 0}, std::vector<double>{0, 0, 5, 5}), 50.0F);
    EXPECT_EQ(POLYGON_AREA(std::vector<double>{0, 0, 10, 10}, std::vector<double>{0, 5, 5, 0}), 50.0F);
    EXPECT_EQ(POLYGON_AREA(std::vector<double>{0, 10, 10, 0, 0}, std::vector<double>{0, 0, 5, 5, 0}), 50.0F);
    EXPECT_EQ(POLYGON_AREA(std::vector<double>{0, 4, 0}, std::vector<double>{0, 0, 3}), 6.0F);
    // A sum of single precision would lose the square of 2 on coordinates of millions.
    EXPECT_EQ(
        POLYGON_AREA(std::vector<double>{3e6, 3e6 + 2, 3e6 + 2, 3e6}, std::vector<double>{5e6, 5e6, 5e6 + 2, 5e6 + 2}),
        4.0F);
    EXPECT_EQ(POLYGON_AREA({}, {}), 0.0F);
}

// --- Triangles and elements ------------------------------------------------------------------------------------------

// Both precisions of a triangle interpolation, which must agree on these small whole numbers.
struct Triangle {
    Double3 x;
    Double3 y;
    Single3 z;

    float at(double px, double py, bool want = true) const
    {
        float inDouble = 0;
        EXPECT_EQ(INTERPOLATE_TRIANGLE_8(px, py, x, y, z, inDouble), want);
        float inSingle = 0;
        EXPECT_EQ(
            INTERPOLATE_TRIANGLE(static_cast<float>(px), static_cast<float>(py), single(x), single(y), z, inSingle),
            want);
        EXPECT_EQ(inDouble, inSingle);
        return inDouble;
    }

    float uncheckedAt(double px, double py) const
    {
        const float inDouble = INTERPOLATE_TRIANGLE_NO_CHECKS_8(px, py, x, y, z);
        EXPECT_EQ(
            INTERPOLATE_TRIANGLE_NO_CHECKS(static_cast<float>(px), static_cast<float>(py), single(x), single(y), z),
            inDouble);
        return inDouble;
    }

    static Single3 single(const Double3& v)
    {
        return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
    }
};

const Triangle kTent = {{0, 4, 2}, {0, 0, 4}, {0, 4, 10}};

TEST(InterpolateTriangle, GoesByTheRayFromTheThirdVertex)
{
    // q is (2, 0) with 0 + 4 * 2 / 4 = 2, p half-way from 10 to 2.
    EXPECT_EQ(kTent.at(2, 2), 6.0F);
    EXPECT_EQ(kTent.at(2, 0), 2.0F);
    EXPECT_EQ(kTent.at(2, 4), 10.0F); // on vertex 3
    // Outside: beyond the edge by half of the height, 10 + (2 - 10) * 6 / 4.
    EXPECT_EQ(kTent.at(2, -2), -2.0F);
}

// Where no coordinate is nothing. Each point lies half-way between vertex 3 and the cut.
TEST(InterpolateTriangle, GoesByTheRayWhereverTheTriangleLies)
{
    const Triangle slanting = {{10, 14, 11}, {20, 22, 27}, {10, 18, 30}};
    EXPECT_EQ(slanting.at(11.5, 24), 22.0F); // cuts at (12, 21): 14
    const Triangle over = {{10, 14, 12}, {20, 22, 25}, {10, 18, 30}};
    EXPECT_EQ(over.at(12, 23), 22.0F); // as well
    const Triangle upright = {{10, 10, 14}, {20, 24, 23}, {10, 18, 30}};
    EXPECT_EQ(upright.at(12, 22), 21.0F); // cuts at (10, 21): 12
}

TEST(InterpolateTriangle, RefusesARayThatIsParallelToTheEdge)
{
    EXPECT_EQ(kTent.at(5, 4, false), -99999.0F);
    const Triangle upright = {{0, 0, 4}, {0, 4, 0}, {1, 2, 3}};
    EXPECT_EQ(upright.at(4, 1, false), -99999.0F);
}

TEST(InterpolateTriangle, TakesTheMiddleWhereALengthVanishes)
{
    // Edge 1-2 is a point: 2 + (4 - 2) / 2 = 3 there, and p half-way from 10 to 3.
    const Triangle noEdge = {{0, 0, 4}, {0, 0, 0}, {2, 4, 10}};
    EXPECT_EQ(noEdge.at(2, 0), 6.5F);
    EXPECT_EQ(noEdge.uncheckedAt(2, 0), 6.5F);
    // Vertex 3 is on the edge: 10 + (2 - 10) / 2.
    const Triangle noRay = {{0, 4, 2}, {0, 0, 0}, {0, 4, 10}};
    EXPECT_EQ(noRay.at(2, 1), 6.0F);
    EXPECT_EQ(noRay.uncheckedAt(2, 1), 6.0F);
}

TEST(InterpolateTriangle, OnlyTheCheckedFormHasTheFloorOfDistance)
{
    // p is 5e-7 below vertex 3: no distance for DISTANCE, but 5e-7 / 4 of the 8 down to 2 for a plain root.
    float checked = 0;
    EXPECT_TRUE(INTERPOLATE_TRIANGLE_8(2, 4 - 5e-7, kTent.x, kTent.y, kTent.z, checked));
    EXPECT_EQ(checked, 10.0F);
    EXPECT_EQ(INTERPOLATE_TRIANGLE_NO_CHECKS_8(2, 4 - 5e-7, kTent.x, kTent.y, kTent.z), 10.0F - 1e-6F);
    EXPECT_LT(10.0F - 1e-6F, 10.0F);
}

TEST(InterpolateTriangleNoChecks, TakesTheSlopeRulesInTheirOrder)
{
    // Edge and ray upright: q is vertex 1, and p lies 2 of the 8 from vertex 3: 10 + (0 - 10) * 0.25.
    EXPECT_EQ((Triangle{{2, 2, 2}, {0, 4, 8}, {0, 4, 10}}.uncheckedAt(2, 6)), 7.5F);
    // Edge upright: q is (0, 2), half-way up, and p half-way from 10 to 2.
    EXPECT_EQ((Triangle{{0, 0, 4}, {0, 4, 2}, {0, 4, 10}}.uncheckedAt(2, 2)), 6.0F);
    // With a ray that climbs from (4, 1) by (2, 2): q is (0, 3) with 3, and p half-way from 10 to that.
    EXPECT_EQ((Triangle{{0, 0, 4}, {0, 4, 1}, {0, 4, 10}}.uncheckedAt(2, 2)), 6.5F);
    // Ray upright.
    EXPECT_EQ(kTent.uncheckedAt(2, 2), 6.0F);
    // Neither: slopes 0 and -2 meet at (2, 0); root 5 of root 20 from vertex 3.
    EXPECT_EQ((Triangle{{0, 4, 0}, {0, 0, 4}, {0, 4, 10}}.uncheckedAt(1, 2)), 6.0F);
}

TEST(InterpolateTriangleNoChecks, DividesByZeroForEqualSlopes)
{
    EXPECT_TRUE(std::isnan(INTERPOLATE_TRIANGLE_NO_CHECKS_8(5, 4, kTent.x, kTent.y, kTent.z)));
    EXPECT_TRUE(std::isnan(
        INTERPOLATE_TRIANGLE_NO_CHECKS(5, 4, Triangle::single(kTent.x), Triangle::single(kTent.y), kTent.z)));
}

TEST(InterpolateTriangleNoChecks, RoundsInAnotherOrderInEachPrecision)
{
    // q and p are (1, 0), a third along the edge from 0 to 10, and vertex 3 has 0.
    const Triangle thirds = {{0, 3, 1}, {0, 0, 3}, {0, 10, 0}};
    const float multipliedFirst = 10.0F / 3.0F;
    const float dividedFirst = 10.0F * (1.0F / 3.0F);
    ASSERT_NE(multipliedFirst, dividedFirst);
    EXPECT_EQ(INTERPOLATE_TRIANGLE_NO_CHECKS(1, 0, Triangle::single(thirds.x), Triangle::single(thirds.y), thirds.z),
              multipliedFirst);
    EXPECT_EQ(INTERPOLATE_TRIANGLE_NO_CHECKS_8(1, 0, thirds.x, thirds.y, thirds.z), dividedFirst);
    // The checked forms both multiply first.
    EXPECT_EQ(thirds.at(1, 0), multipliedFirst);
}

TEST(InterpolateElement, OfThreeVerticesIsTheTriangle)
{
    float z = 77;
    EXPECT_TRUE(INTERPOLATE_ELEMENT_8(2, 2, kTent.x, kTent.y, kTent.z, 0, z));
    EXPECT_EQ(z, 6.0F);
    z = 77;
    EXPECT_FALSE(INTERPOLATE_ELEMENT_8(9, 2, kTent.x, kTent.y, kTent.z, 0, z));
    EXPECT_EQ(z, 77.0F);
}

TEST(InterpolateElement, OfFourVerticesIsTheMeanOfTheTrianglesThatHoldThePoint)
{
    const std::vector<double> x = {0, 4, 4, 0};
    const std::vector<double> y = {0, 0, 4, 4};
    const std::vector<float> z = {0, 0, 0, 8};
    // (1, 2) lies in 1-3-4, where the value is 2y - 2x = 2, and in 1-2-4, where it is 2y = 4.
    float zi = 77;
    EXPECT_TRUE(INTERPOLATE_ELEMENT_8(1, 2, x, y, z, 0, zi));
    EXPECT_NEAR(zi, 3.0F, 1e-6F);
    EXPECT_FALSE(INTERPOLATE_ELEMENT_8(5, 2, x, y, z, 0, zi));
    EXPECT_EQ(zi, -99999.0F);
}

TEST(InterpolateElement, OfOtherCountsIsNothing)
{
    for (const std::size_t n : {0U, 1U, 2U, 5U}) {
        float z = 77;
        EXPECT_FALSE(
            INTERPOLATE_ELEMENT_8(0, 0, std::vector<double>(n), std::vector<double>(n), std::vector<float>(n), 0, z));
        EXPECT_EQ(z, 77.0F);
    }
}

// --- Channel sections ------------------------------------------------------------------------------------------------

TEST(CircleWidth, IsTheChordAtADepth)
{
    EXPECT_EQ(CIRCLE_WIDTH(5, 5), 10.0F);
    EXPECT_EQ(CIRCLE_WIDTH(5, 2), 8.0F); // 2 sqrt(25 - 9)
    EXPECT_EQ(CIRCLE_WIDTH(5, 8), 8.0F);
    EXPECT_EQ(CIRCLE_WIDTH(5, 0), 0.0F);
    EXPECT_EQ(CIRCLE_WIDTH(5, 9e-6F), 0.0F);
    EXPECT_GT(CIRCLE_WIDTH(5, 2e-5F), 0.0F);
    EXPECT_EQ(CIRCLE_WIDTH(5, 10), 0.0F);
    EXPECT_EQ(CIRCLE_WIDTH(5, 9.999995F), 0.0F);
    EXPECT_GT(CIRCLE_WIDTH(5, 9.9999F), 0.0F);
}

void expectParameters(const HydraulicParameters& got, float area, float width, float perimeter)
{
    EXPECT_EQ(got.area, area);
    EXPECT_EQ(got.width, width);
    EXPECT_EQ(got.perimeter, perimeter);
}

// A bed from (0, 3) down to (4, 0), 5 long, and its mirror image.
TEST(HydParam, OfABedUnderALevel)
{
    expectParameters(HYD_PARAM(0, 3, 4, 0, 5, 1), 14, 4, 5); // 4 * (5 - 1.5)
    expectParameters(HYD_PARAM(0, 3, 4, 0, 3, 1), 6, 4, 5);
    expectParameters(HYD_PARAM(0, 3, 4, 0, -1, 1), 0, 0, 0);
    expectParameters(HYD_PARAM(0, 3, 4, 0, 0, 1), 0, 0, 0);
    // Half of the bed is wet: 2 wide, 1.5 deep, sqrt(4 + 2.25) long.
    expectParameters(HYD_PARAM(0, 3, 4, 0, 1.5F, 1), 1.5F, 2, 2.5F);
    expectParameters(HYD_PARAM(0, 0, 4, 3, 1.5F, 1), 1.5F, 2, 2.5F);
}

TEST(HydParam, IsNothingWithoutAFactor)
{
    expectParameters(HYD_PARAM(0, 3, 4, 0, 5, 0), 0, 0, 0);
    expectParameters(HYD_PARAM(0, 3, 4, 0, 5, -1), 0, 0, 0);
    expectParameters(HYD_PARAM(0, 3, 4, 0, 5, 0.001F), 14, 4, 5);
}

TEST(HydParam2, SplitsAtTheMiddle)
{
    // The middle of (0, 6) to (8, 0) is (4, 3).
    const HydraulicHalves halves = HYD_PARAM2(0, 6, 1, 8, 0, 1, 3);
    expectParameters(halves.first, 0, 0, 0);
    expectParameters(halves.second, 6, 4, 5);
    const HydraulicHalves full = HYD_PARAM2(0, 6, 1, 8, 0, 0, 7);
    expectParameters(full.first, 10, 4, 5); // 4 * (7 - 4.5)
    expectParameters(full.second, 0, 0, 0);
}

// --- Grid axes -------------------------------------------------------------------------------------------------------

TEST(GeoShift, TurnsPointsIntoGridAxes)
{
    const std::vector<double> x = {500003.0, 500000.0, 500000.125};
    const std::vector<double> y = {7000000.0, 7000004.0, 7000000.25};
    std::vector<float> u(3);
    std::vector<float> v(3);
    GEO_SHIFT(x, y, 500000, 7000000, 0, u, v);
    EXPECT_THAT(u, testing::ElementsAre(3, 0, 0.125F));
    EXPECT_THAT(v, testing::ElementsAre(0, 4, 0.25F));

    // Axes turned by a quarter: u runs north, v west.
    GEO_SHIFT(x, y, 500000, 7000000, std::acos(0.0), u, v);
    EXPECT_NEAR(u[0], 0, 1e-6);
    EXPECT_NEAR(v[0], -3, 1e-6);
    EXPECT_NEAR(u[1], 4, 1e-6);
    EXPECT_NEAR(v[1], 0, 1e-6);
}

TEST(SetSubGridArea, IsTheWindowOfThePoints)
{
    const SubGridArea area =
        SET_SUB_GRID_AREA(std::vector<float>{3.2F, 0.5F, 2}, std::vector<float>{9, -0.5F, 1}, 1, 5, 10);
    EXPECT_EQ(area.jLow, 1);
    EXPECT_EQ(area.jHigh, 4);
    EXPECT_EQ(area.iLow, 0); // below the grid, though -0.5 truncates to 0
    EXPECT_EQ(area.iHigh, 5);
    EXPECT_EQ(area.umin, 0.5F);
    EXPECT_EQ(area.umax, 3.2F);
    EXPECT_EQ(area.vmin, -0.5F);
    EXPECT_EQ(area.vmax, 9.0F);
}

TEST(SetSubGridArea, HoldsFarPoints)
{
    const SubGridArea far = SET_SUB_GRID_AREA(std::vector<float>{4, 1e30F}, std::vector<float>{1e30F, 1e30F}, 2, 7, 8);
    EXPECT_EQ(far.jLow, 3); // 4 / 2 is the start of column 3
    EXPECT_EQ(far.jHigh, 8);
    EXPECT_EQ(far.iLow, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(far.iHigh, 7);
    EXPECT_EQ(SET_SUB_GRID_AREA({}, {}, 1, 5, 5).iHigh, 0);
}

} // namespace
} // namespace gridforge::exports
