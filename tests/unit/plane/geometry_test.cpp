#include "plane/geometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace gridforge {
namespace {

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

} // namespace
} // namespace gridforge
