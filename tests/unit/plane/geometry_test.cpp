#include "plane/geometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace gridforge {
namespace {

using Single3 = std::array<float, 3>;
using Double3 = std::array<double, 3>;

// --- Angles ----------------------------------------------------------------------------------------------------------

TEST(Angles, AreExactAtQuarterTurns)
{
    EXPECT_EQ(sind(0), 0);
    EXPECT_EQ(sind(90), 1);
    EXPECT_EQ(sind(180), 0);
    EXPECT_EQ(sind(270), -1);
    EXPECT_EQ(sind(-90), -1);
    EXPECT_EQ(sind(450), 1);
    EXPECT_EQ(cosd(0), 1);
    EXPECT_EQ(cosd(90), 0);
    EXPECT_EQ(cosd(180), -1);
    EXPECT_EQ(cosd(270), 0);
    EXPECT_EQ(cosd(-180), -1);
    EXPECT_NEAR(sind(30), 0.5, 1e-15);
    EXPECT_NEAR(cosd(60), 0.5, 1e-15);
    EXPECT_TRUE(std::isnan(sind(std::numeric_limits<double>::quiet_NaN())));
    EXPECT_TRUE(std::isnan(cosd(std::numeric_limits<double>::infinity())));
}

TEST(Angles, OfDirectionsAreExactAlongTheAxes)
{
    EXPECT_EQ(atan2d(0, 7), 0);
    EXPECT_EQ(atan2d(3, 0), 90);
    EXPECT_EQ(atan2d(0, -2), 180);
    EXPECT_EQ(atan2d(-3, 0), -90);
    EXPECT_EQ(atan2d(0, 0), 0);
    EXPECT_NEAR(atan2d(1, 1), 45, 1e-13);
    EXPECT_NEAR(atan2d(-1, -1), -135, 1e-13);
}

TEST(Angles, BetweenTwoSegments)
{
    EXPECT_EQ(ANGLE2D(0, 0, 1, 0, 0, 0, 1, 1), 45.0F);
    EXPECT_EQ(ANGLE2D(5, 5, 6, 6, 2, 0, 3, 0), 45.0F);
    // Directions 135 and -135 degrees: 270 apart, so 90.
    EXPECT_EQ(ANGLE2D(0, 0, -1, 1, 0, 0, -1, -1), 90.0F);
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

// --- Points and segments ---------------------------------------------------------------------------------------------

TEST(Distance, IsZeroWhenBothDifferencesAreTiny)
{
    EXPECT_EQ(DISTANCE(0, 0, 0, 0), 0.0F);
    EXPECT_EQ(DISTANCE(0, 0, 5e-7F, 5e-7F), 0.0F);
    EXPECT_EQ(DISTANCE_8(0, 0, 0, 0), 0.0F);
    EXPECT_EQ(DISTANCE_8(0, 0, -5e-7, 5e-7), 0.0F);
    EXPECT_FLOAT_EQ(DISTANCE(0, 0, 1e-6F, 0), 1e-6F);
    EXPECT_EQ(DISTANCE(0, 0, 5e-7F, 2), 2.0F);
}

TEST(Distance, IsThatOfTheTriangle345)
{
    EXPECT_EQ(DISTANCE(1, 1, 4, 5), 5.0F);
    EXPECT_EQ(DISTANCE(4, 5, 1, 1), 5.0F);
    EXPECT_EQ(DISTANCE_8(1, 1, 4, 5), 5.0F);
}

TEST(Distance, OfDoublesRoundsTheDifferencesNotTheCoordinates)
{
    EXPECT_EQ(DISTANCE_8(1e9, 0, 1e9 + 0.5, 0), 0.5F);
    // 2^24 + 1 has no place in single precision.
    EXPECT_EQ(DISTANCE_8(0, 0, 16777217.0, 0), 16777216.0F);
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

TEST(SameSide, IsAProductRelativeToBothPoints)
{
    // d is (2, 0): (2 * 1) * (2 * 3), and with b below the line (2 * 1) * (2 * -3).
    EXPECT_EQ(SAME_SIDE(0, 0, 2, 0, 1, 1, 1, 3), 12.0F);
    EXPECT_EQ(SAME_SIDE(0, 0, 2, 0, 1, 1, 1, -3), -12.0F);
    EXPECT_EQ(SAME_SIDE(0, 0, 2, 0, 9, 0, 1, 3), 0.0F);
    // a from point 1: 1 * 1 - 1 * 0; b from point 2: 1 * 1 - 1 * 2.
    EXPECT_EQ(SAME_SIDE(0, 0, 1, 1, 0, 1, 3, 2), -1.0F);
    EXPECT_EQ(SAME_SIDE_8(0, 0, 2, 0, 1, 1, 1, 3), 12.0F);
    EXPECT_EQ(SAME_SIDE_8(0, 0, 1, 1, 0, 1, 3, 2), -1.0F);
}

TEST(SameSide, OfDoublesIsAsCoarseAsSinglePrecision)
{
    // a lies above the line by 2^-30, which is lost when 1 + 2^-30 becomes single.
    const double above = 1.0 + std::ldexp(1.0, -30);
    EXPECT_EQ(SAME_SIDE_8(0, 0, 1, 1, 1, above, 0, 1), 0.0F);
    // The differences are taken in double: far from the origin the same points stay apart.
    EXPECT_LT(SAME_SIDE_8(1e8, 1e8, 1e8 + 1, 1e8 + 1, 1e8, 1e8 + 1, 1e8 + 1, 1e8), 0.0F);
}

TEST(IntersectPoint, AsksForTheWholeLine)
{
    EXPECT_TRUE(INTERSECT_POINT(0, 0, 2, 2, 1, 1));
    EXPECT_TRUE(INTERSECT_POINT(0, 0, 2, 2, 5, 5));
    EXPECT_FALSE(INTERSECT_POINT(0, 0, 2, 2, 1, 1.5F));
}

TEST(IntersectLine, CountsTouching)
{
    EXPECT_TRUE(INTERSECT_LINE(0, 0, 2, 2, 0, 2, 2, 0));
    EXPECT_TRUE(INTERSECT_LINE(0, 0, 1, 1, 1, 1, 2, 0));
    EXPECT_TRUE(INTERSECT_LINE(0, 0, 2, 0, 1, 0, 1, 5));
    EXPECT_FALSE(INTERSECT_LINE(0, 0, 2, 0, 1, 1, 1, 5));
    EXPECT_FALSE(INTERSECT_LINE(0, 0, 1, 0, 0, 1, 1, 1));
    EXPECT_TRUE(INTERSECT_LINE_8(0, 0, 1, 1, 1, 1, 2, 0));
    EXPECT_TRUE(INTERSECT_LINE_8(0, 0, 2, 0, 1, 0, 1, 5));
    EXPECT_FALSE(INTERSECT_LINE_8(0, 0, 2, 0, 1, 1, 1, 5));
}

TEST(IntersectLine, TakesSegmentsOfOneLineAsMeetingWhereverTheyAre)
{
    EXPECT_TRUE(INTERSECT_LINE(0, 0, 1, 0, 5, 0, 6, 0));
    EXPECT_TRUE(INTERSECT_LINE_8(0, 0, 1, 0, 5, 0, 6, 0));
}

// The lines of all these cross at (1, 1).
TEST(IntersectLineV2, TellsWhichSegmentsHoldTheCrossing)
{
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, 2, 2, 0, 2, 2, 0), 3);
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, 2, 2, 0, 2, 0.5F, 1.5F), 1);
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, 0.5F, 0.5F, 0, 2, 2, 0), 2);
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, 0.5F, 0.5F, 0, 2, 0.5F, 1.5F), 4);
    EXPECT_EQ(INTERSECT_LINE_V2_8(0, 0, 2, 2, 0, 2, 2, 0), 3);
    EXPECT_EQ(INTERSECT_LINE_V2_8(0, 0, 2, 2, 0, 2, 0.5, 1.5), 1);
    EXPECT_EQ(INTERSECT_LINE_V2_8(0, 0, 0.5, 0.5, 0, 2, 2, 0), 2);
    EXPECT_EQ(INTERSECT_LINE_V2_8(0, 0, 0.5, 0.5, 0, 2, 0.5, 1.5), 4);
}

TEST(IntersectLineV2, HasTheEndOfASegmentInsideAndItsStartOutside)
{
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, 1, 1, 0, 2, 2, 0), 3);
    EXPECT_EQ(INTERSECT_LINE_V2(1, 1, 0, 0, 0, 2, 2, 0), 2);
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, 2, 2, 0, 2, 1, 1), 3);
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, 2, 2, 1, 1, 0, 2), 1);
    EXPECT_EQ(INTERSECT_LINE_V2_8(0, 0, 1, 1, 0, 2, 2, 0), 3);
    EXPECT_EQ(INTERSECT_LINE_V2_8(1, 1, 0, 0, 0, 2, 2, 0), 2);
}

TEST(IntersectLineV2, TellsParallelAndEqualLines)
{
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, 1, 1, 0, 1, 1, 2), 0);
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, 1, 1, 3, 3, 5, 5), -1);
    EXPECT_EQ(INTERSECT_LINE_V2_8(0, 0, 1, 1, 0, 1, 1, 2), 0);
    EXPECT_EQ(INTERSECT_LINE_V2_8(0, 0, 1, 1, 3, 3, 5, 5), -1);
}

TEST(IntersectLineV2, OfDoublesKeepsDoublePrecision)
{
    // The segments miss each other by 2^-30, which single precision does not see.
    const double miss = 1.0 - std::ldexp(1.0, -30);
    EXPECT_EQ(INTERSECT_LINE_V2_8(0, 0, miss, miss, 0, 2, 2, 0), 2);
    EXPECT_EQ(INTERSECT_LINE_V2(0, 0, static_cast<float>(miss), static_cast<float>(miss), 0, 2, 2, 0), 3);
}

template <typename Real>
class IntersectionPoint : public testing::Test {
protected:
    // Calls the form of this precision; "none" leaves the marks 77 and 88.
    static testing::AssertionResult meets(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3, Real x4, Real y4,
                                          Real wantX, Real wantY, bool want = true)
    {
        Real x = 77;
        Real y = 88;
        bool found = false;
        if constexpr (std::is_same_v<Real, float>) {
            found = INTERSECTION_POINT(x1, y1, x2, y2, x3, y3, x4, y4, x, y);
        } else {
            found = INTERSECTION_POINT_8(x1, y1, x2, y2, x3, y3, x4, y4, x, y);
        }
        if (found == want && x == wantX && y == wantY) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << found << " (" << x << ", " << y << ")";
    }
};
using BothPrecisions = testing::Types<float, double>;
TYPED_TEST_SUITE(IntersectionPoint, BothPrecisions);

TYPED_TEST(IntersectionPoint, GoesBySlopes)
{
    EXPECT_TRUE(this->meets(0, 0, 2, 2, 0, 2, 2, 0, 1, 1));
    EXPECT_TRUE(this->meets(0, 0, 2, 2, 10, 8, 12, 6, 9, 9)); // beyond both segments
    EXPECT_TRUE(this->meets(1, 0, 1, 5, 0, 0, 2, 4, 1, 2));   // first upright
    EXPECT_TRUE(this->meets(0, 0, 2, 4, 1, 0, 1, 5, 1, 2));   // second upright
}

TYPED_TEST(IntersectionPoint, LeavesThePointWhereSlopesAreEqual)
{
    EXPECT_TRUE(this->meets(1, 0, 1, 5, 3, 0, 3, 5, 77, 88, false));
    EXPECT_TRUE(this->meets(1, 0, 1, 5, 1, 0, 1, 5, 77, 88, false));
    EXPECT_TRUE(this->meets(0, 0, 2, 2, 0, 1, 2, 3, 77, 88, false));
}

TEST(VectorMagnitude, IsZeroForTinyComponents)
{
    EXPECT_EQ(VECTOR_MAGNITUDE(3, -4), 5.0F);
    EXPECT_EQ(VECTOR_MAGNITUDE(1e-6F, -1e-6F), 0.0F);
    EXPECT_EQ(VECTOR_MAGNITUDE(0, 0), 0.0F);
    EXPECT_FLOAT_EQ(VECTOR_MAGNITUDE(2e-6F, 0), 2e-6F);
}

// --- Regions ---------------------------------------------------------------------------------------------------------

// Rings in the layout of a region, asked in both precisions, which must agree on these small whole numbers.
class Region {
public:
    using Ring = std::vector<std::array<double, 2>>; // closed: the last vertex is the first

    explicit Region(const std::vector<Ring>& rings)
    {
        for (const Ring& ring : rings) {
            for (const auto& vertex : ring) {
                add(vertex[0], vertex[1]);
            }
            ir_.push_back(np());
            add(ring[1][0], ring[1][1]);
        }
    }

    bool holds(double px, double py) const
    {
        const double xmin = *std::min_element(x_.begin(), x_.end());
        const bool inDouble = INSIDE_POLYGON_8(px, py, x_, y_, np(), xmin, ir_, static_cast<std::int32_t>(ir_.size()));
        const std::vector<float> x(x_.begin(), x_.end());
        const std::vector<float> y(y_.begin(), y_.end());
        const bool inSingle = INSIDE_POLYGON(static_cast<float>(px), static_cast<float>(py), x, y, np(),
                                             static_cast<float>(xmin), ir_, static_cast<std::int32_t>(ir_.size()));
        EXPECT_EQ(inDouble, inSingle) << px << ", " << py;
        return inDouble;
    }

private:
    void add(double x, double y)
    {
        x_.push_back(x);
        y_.push_back(y);
    }
    std::int32_t np() const { return static_cast<std::int32_t>(x_.size()); }

    std::vector<double> x_;
    std::vector<double> y_;
    std::vector<std::int32_t> ir_;
};

const Region::Ring kSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
const Region::Ring kDiamond = {{5, 0}, {10, 5}, {5, 10}, {0, 5}, {5, 0}};

TEST(InsidePolygon, TellsInsideFromOutside)
{
    const Region square({kSquare});
    EXPECT_TRUE(square.holds(5, 5));
    EXPECT_TRUE(square.holds(1, 9));
    EXPECT_FALSE(square.holds(-1, 5));
    EXPECT_FALSE(square.holds(11, 5));
    EXPECT_FALSE(square.holds(5, 11));
    EXPECT_FALSE(square.holds(5, -1));
}

// Touching counts in the crossing of an edge, so the west edge belongs to the square and the east edge does not; along
// horizontal edges nothing crosses.
TEST(InsidePolygon, OnAnEdgeFollowsTheCrossings)
{
    const Region square({kSquare});
    EXPECT_TRUE(square.holds(0, 5));
    EXPECT_FALSE(square.holds(10, 5));
    EXPECT_FALSE(square.holds(5, 0));
    EXPECT_FALSE(square.holds(5, 10));
    EXPECT_FALSE(square.holds(11, 0));
    EXPECT_FALSE(square.holds(11, 10));
}

TEST(InsidePolygon, CountsAVertexPassedThroughOnceAndATopNever)
{
    const Region diamond({kDiamond});
    EXPECT_TRUE(diamond.holds(5, 5));   // through the west vertex
    EXPECT_FALSE(diamond.holds(12, 5)); // through the west and the east vertex
    EXPECT_FALSE(diamond.holds(8, 10)); // past the top
    EXPECT_FALSE(diamond.holds(8, 0));  // past the bottom
    EXPECT_FALSE(diamond.holds(-2, 5));
}

// The ray passes the second vertex first, so what counts is the vertex ahead of it, at the end of the ring. All y are
// negative: a wrong start value of 0 would lie on the wrong side.
TEST(InsidePolygon, JudgesTheSecondVertexByTheOneAheadOfItInTheRing)
{
    const Region throughSecond({{{0, -100}, {4, -95}, {12, -90}, {-5, -90}, {0, -100}}});
    EXPECT_TRUE(throughSecond.holds(2, -95));
    EXPECT_FALSE(throughSecond.holds(5, -95));

    // The second vertex starts an edge along the ray, so the crossing is found where that edge ends.
    const Region edgeFromSecond({{{0, -100}, {4, -95}, {8, -95}, {12, -90}, {-5, -90}, {0, -100}}});
    EXPECT_TRUE(edgeFromSecond.holds(2, -95));
    EXPECT_FALSE(edgeFromSecond.holds(9, -95));

    // The ring is closed in the middle of the edges along the ray.
    const Region closedOnTheRay({{{4, -95}, {6, -95}, {8, -95}, {12, -90}, {-5, -90}, {0, -100}, {2, -95}, {4, -95}}});
    EXPECT_TRUE(closedOnTheRay.holds(1, -95));
    EXPECT_FALSE(closedOnTheRay.holds(9, -95));
}

TEST(InsidePolygon, TakesALedgeAlongTheRayAsOneVertex)
{
    //   10  +-----------+
    //    5  |     +-----+ (8..12)
    //    0  +-----+
    const Region ledge({{{0, 0}, {8, 0}, {8, 5}, {12, 5}, {12, 10}, {0, 10}, {0, 0}}});
    EXPECT_TRUE(ledge.holds(4, 5));
    // At x 10 only the west edge has been met, as the ledge is judged at its end; behind it both.
    EXPECT_TRUE(ledge.holds(10, 5));
    EXPECT_FALSE(ledge.holds(13, 5));
}

TEST(InsidePolygon, LeavesOutHolesAndAddsIslands)
{
    const Region region(
        {kSquare, {{4, 4}, {4, 6}, {6, 6}, {6, 4}, {4, 4}}, {{20, 0}, {30, 0}, {30, 10}, {20, 10}, {20, 0}}});
    EXPECT_TRUE(region.holds(2, 5));
    EXPECT_FALSE(region.holds(5, 5));
    EXPECT_TRUE(region.holds(8, 5));
    EXPECT_FALSE(region.holds(15, 5));
    EXPECT_TRUE(region.holds(25, 5));
    EXPECT_FALSE(region.holds(35, 5));
}

TEST(InsidePolygon, JudgesTheSecondVertexOfALaterRingByItsOwnRing)
{
    // The hole's second vertex is on the ray, and the ring before it has left the other side as the last one met.
    const Region region({{{0, -110}, {40, -110}, {40, -80}, {0, -80}, {0, -110}},
                         {{10, -100}, {20, -95}, {10, -90}, {5, -95}, {10, -100}}});
    EXPECT_TRUE(region.holds(2, -95));
    EXPECT_FALSE(region.holds(10, -95));
    EXPECT_TRUE(region.holds(30, -95));
}

TEST(InsidePolygon, TakesNoMoreThanNpVerticesOfLargerArrays)
{
    const std::vector<double> x = {0, 10, 10, 0, 0, 10, 99, 99};
    const std::vector<double> y = {0, 0, 10, 10, 0, 0, 99, -99};
    const std::vector<std::int32_t> ir = {5, 1, 1};
    EXPECT_TRUE(INSIDE_POLYGON_8(5, 5, x, y, 6, 0, ir, 1));
    EXPECT_FALSE(INSIDE_POLYGON_8(15, 5, x, y, 6, 0, ir, 1));
}

TEST(InsidePolygon, OfNothingHoldsNothing)
{
    EXPECT_FALSE(INSIDE_POLYGON_8(0, 0, {}, {}, 0, 0, {}, 0));
    const std::vector<double> one = {1, 1};
    EXPECT_FALSE(INSIDE_POLYGON_8(1, 1, one, one, 2, 1, std::vector<std::int32_t>{1}, 1));
}

TEST(InsidePolygon, StaysWithinTheVerticesWhateverTheRingEnds)
{
    const std::vector<double> x = {0, 10, 10, 0, 0, 10};
    const std::vector<double> y = {0, 0, 10, 10, 0, 0};
    for (const std::int32_t end : {-2000000000, -1, 0, 1, 6, 7, 2000000000}) {
        EXPECT_TRUE(INSIDE_POLYGON_8(5, 5, x, y, 6, 0, std::vector<std::int32_t>{end}, 1)) << end;
    }
}

TEST(InsidePolygon, RingsThatEndBeforeTheVerticesAreReported)
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
} // namespace gridforge
