#include "support/child_run.h"
#include "support/consoles.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <gmock/gmock.h>
#include <gridforge/gridforge.h>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <string>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::FloatEq;

TEST(ExportedPoints, Distance)
{
    EXPECT_EQ(::DISTANCE(1, 1, 4, 5), 5.0F);
    EXPECT_EQ(::DISTANCE(0, 0, 5e-7F, 5e-7F), 0.0F);
    EXPECT_EQ(::DISTANCE_8(6e6 + 1, 1, 6e6 + 4, 5), 5.0F);
    EXPECT_EQ(::VECTOR_MAGNITUDE(-3, 4), 5.0F);
    EXPECT_EQ(::SAME_POINT(0, 0, 0.5F, 0, 0.5F), 0);
    EXPECT_EQ(::SAME_POINT(0, 0, 0.25F, 0.25F, 0.5F), 1);
    EXPECT_EQ(::SAME_POINT_8(0, 0, 0, 0.5, 0.5), 0);
    EXPECT_EQ(::SAME_POINT_8(0, 0, 0.25, 0.25, 0.5), 1);
}

TEST(ExportedSegments, SideAndMeeting)
{
    // The line along x, a and b one above it: (1*1 - 0) * (1*1 - 0).
    EXPECT_EQ(::SAME_SIDE(0, 0, 1, 0, 0, 1, 1, 1), 1.0F);
    EXPECT_EQ(::SAME_SIDE_8(0, 0, 1, 0, 0, 1, 1, -1), -1.0F);
    EXPECT_EQ(::INTERSECT_POINT(0, 0, 2, 2, 5, 5), 1);
    EXPECT_EQ(::INTERSECT_POINT(0, 0, 2, 2, 5, 4), 0);
    EXPECT_EQ(::INTERSECT_LINE(0, 0, 2, 2, 2, 2, 3, 0), 1); // touching
    EXPECT_EQ(::INTERSECT_LINE(0, 0, 1, 1, 2, 2, 3, 0), 0);
    EXPECT_EQ(::INTERSECT_LINE_8(0, 0, 2, 2, 0, 2, 2, 0), 1);
    EXPECT_EQ(::INTERSECT_LINE_8(0, 0, 1, 1, 2, 2, 3, 0), 0);
    EXPECT_EQ(::INTERSECT_LINE_V2(0, 0, 2, 2, 0, 2, 2, 0), 3);
    EXPECT_EQ(::INTERSECT_LINE_V2(0, 0, 1, 0, 0, 1, 1, 1), 0);
    EXPECT_EQ(::INTERSECT_LINE_V2_8(0, 0, 1, 0, 2, 0, 3, 0), -1);
    EXPECT_EQ(::INTERSECT_LINE_V2_8(0, 0, 2, 0, 0, 0, 0, 2), 4); // the start of either is outside
    EXPECT_EQ(::ANGLE2D(0, 0, 1, 0, 0, 0, 1, 1), 45.0F);
}

TEST(ExportedSegments, CrossingPoint)
{
    float x = 9;
    float y = 9;
    EXPECT_EQ(::INTERSECTION_POINT(0, 0, 2, 2, 0, 2, 2, 0, &x, &y), 1);
    EXPECT_EQ(x, 1.0F);
    EXPECT_EQ(y, 1.0F);
    double x8 = 9;
    double y8 = 8;
    EXPECT_EQ(::INTERSECTION_POINT_8(0, 0, 1, 1, 0, 1, 1, 2, &x8, &y8), 0);
    EXPECT_EQ(x8, 9);
    EXPECT_EQ(y8, 8);
    EXPECT_EQ(::INTERSECTION_POINT_8(4, 0, 4, 1, 0, 2, 2, 2, &x8, &y8), 1);
    EXPECT_EQ(x8, 4);
    EXPECT_EQ(y8, 2);
}

// Two squares, the second a hole in the first; each with its closing vertex and the slot that repeats its second.
//   0 1 2 3 4
constexpr std::array<double, 12> kX = {0, 4, 4, 0, 0, 4, 1, 3, 3, 1, 1, 3};
constexpr std::array<double, 12> kY = {0, 0, 4, 4, 0, 0, 1, 1, 3, 3, 1, 1};
constexpr std::array<std::int32_t, 2> kEnds = {5, 11};

TEST(ExportedRegions, InsideCountsRings)
{
    EXPECT_EQ(::INSIDE_POLYGON_8(0.5, 0.5, kX.data(), kY.data(), 12, 0, kEnds.data(), 2), 1);
    EXPECT_EQ(::INSIDE_POLYGON_8(2, 2, kX.data(), kY.data(), 12, 0, kEnds.data(), 2), 0);
    EXPECT_EQ(::INSIDE_POLYGON_8(2, 2, kX.data(), kY.data(), 6, 0, kEnds.data(), 1), 1);
    EXPECT_EQ(::INSIDE_POLYGON_8(2, 2, kX.data(), kY.data(), -1, 0, kEnds.data(), -1), 0);
    std::array<float, 12> x{};
    std::array<float, 12> y{};
    std::transform(kX.begin(), kX.end(), x.begin(), [](double v) { return static_cast<float>(v); });
    std::transform(kY.begin(), kY.end(), y.begin(), [](double v) { return static_cast<float>(v); });
    EXPECT_EQ(::INSIDE_POLYGON(0.5F, 0.5F, x.data(), y.data(), 12, 0, kEnds.data(), 2), 1);
    EXPECT_EQ(::INSIDE_POLYGON(5, 2, x.data(), y.data(), 12, 0, kEnds.data(), 2), 0);
}

TEST(ExportedRegions, RingsThatEndBeforeTheVerticesEndTheRun)
{
    const ScratchFolder folder;
    const std::array<float, 12> x{};
    std::array<std::uint8_t, 20> flags{};
    const auto consoleOf = [&](const std::function<void()>& call) {
        const ChildRun run = runInChild(folder, call);
        EXPECT_TRUE(run.ended);
        EXPECT_EQ(run.status, 0);
        return run.console;
    };
    const std::string start = "Invalid number of polygons in region sent to ";
    const std::string rest = " - contact SUPPORT_CONTACT\n" + kExits;
    EXPECT_EQ(consoleOf([&] { ::INSIDE_POLYGON(5, 5, x.data(), x.data(), 12, 0, kEnds.data(), 1); }),
              start + "inside_polygon routine [1]" + rest);
    EXPECT_EQ(consoleOf([&] { ::INSIDE_POLYGON_8(5, 5, kX.data(), kY.data(), 12, 0, kEnds.data(), 1); }),
              start + "inside_polygon routine [2]" + rest);
    EXPECT_EQ(
        consoleOf([&] { ::grid_inside_polygon(x.data(), x.data(), 12, kEnds.data(), 1, 2, 1, 4, 1, 5, flags.data()); }),
        start + "grid_inside_polygon routine [1]" + rest);
}

TEST(ExportedRegions, Area)
{
    EXPECT_EQ(::POLYGON_AREA(kX.data(), kY.data(), 4), 16.0F);
    EXPECT_EQ(::POLYGON_AREA(kX.data(), kY.data(), 5), 16.0F);
    EXPECT_EQ(::POLYGON_AREA(kX.data(), kY.data(), 0), 0.0F);
    EXPECT_EQ(::POLYGON_AREA(kX.data(), kY.data(), -1), 0.0F);
}

TEST(ExportedTriangles, AreInterpolated)
{
    // z = x + 10 y
    const std::array<float, 4> x = {0, 4, 0, 4};
    const std::array<float, 4> y = {0, 0, 4, 4};
    const std::array<float, 4> z = {0, 4, 40, 44};
    const std::array<double, 4> x8 = {0, 4, 0, 4};
    const std::array<double, 4> y8 = {0, 0, 4, 4};
    float zi = 0;
    EXPECT_EQ(::INTERPOLATE_TRIANGLE(1, 1, x.data(), y.data(), z.data(), &zi), 1);
    EXPECT_THAT(zi, FloatEq(11));
    EXPECT_EQ(::INTERPOLATE_TRIANGLE(1, 4, x.data(), y.data(), z.data(), &zi), 0);
    EXPECT_EQ(zi, -99999.0F);
    EXPECT_EQ(::INTERPOLATE_TRIANGLE_8(1, 2, x8.data(), y8.data(), z.data(), &zi), 1);
    EXPECT_THAT(zi, FloatEq(21));
    ::INTERPOLATE_TRIANGLE_NO_CHECKS(1, 1, x.data(), y.data(), z.data(), &zi);
    EXPECT_THAT(zi, FloatEq(11));
    ::INTERPOLATE_TRIANGLE_NO_CHECKS_8(2, 1, x8.data(), y8.data(), z.data(), &zi);
    EXPECT_THAT(zi, FloatEq(12));

    EXPECT_EQ(::INTERPOLATE_ELEMENT_8(1, 1, x8.data(), y8.data(), z.data(), 3, 0, &zi), 1);
    EXPECT_THAT(zi, FloatEq(11));
    zi = 7;
    EXPECT_EQ(::INTERPOLATE_ELEMENT_8(3.5, 3.5, x8.data(), y8.data(), z.data(), 3, 0, &zi), 0);
    EXPECT_EQ(zi, 7.0F);
    EXPECT_EQ(::INTERPOLATE_ELEMENT_8(9, 9, x8.data(), y8.data(), z.data(), 4, 0, &zi), 0);
    EXPECT_EQ(zi, -99999.0F);
    for (const std::int32_t n : {-1, 0, 2, 5}) {
        zi = 7;
        EXPECT_EQ(::INTERPOLATE_ELEMENT_8(1, 1, x8.data(), y8.data(), z.data(), std::min(n, 2), 0, &zi), 0) << n;
        EXPECT_EQ(zi, 7.0F);
    }
}

TEST(ExportedSections, Hydraulics)
{
    EXPECT_EQ(::CIRCLE_WIDTH(5, 5), 10.0F);
    EXPECT_EQ(::CIRCLE_WIDTH(5, 0), 0.0F);
    float area = 0;
    float width = 0;
    float perimeter = 0;
    // A flat bed of 3 at height 1, under 5.
    ::HYD_PARAM(0, 1, 3, 1, 5, 1, &area, &width, &perimeter);
    EXPECT_THAT((std::array{area, width, perimeter}), ElementsAre(12.0F, 3.0F, 3.0F));
    ::HYD_PARAM(0, 1, 3, 1, 5, 0, &area, &width, &perimeter);
    EXPECT_THAT((std::array{area, width, perimeter}), ElementsAre(0.0F, 0.0F, 0.0F));
    std::array<float, 6> halves{};
    ::HYD_PARAM2(0, 1, 1, 4, 1, 0, 5, &halves[0], &halves[1], &halves[2], &halves[3], &halves[4], &halves[5]);
    EXPECT_THAT(halves, ElementsAre(8.0F, 0.0F, 2.0F, 0.0F, 2.0F, 0.0F));
}

TEST(ExportedAxes, ShiftAndWindow)
{
    const std::array<double, 2> x = {6000010, 6000010};
    const std::array<double, 2> y = {20, 23};
    std::array<float, 2> u{};
    std::array<float, 2> v{};
    ::GEO_SHIFT(x.data(), y.data(), 2, 6000000, 20, 0, u.data(), v.data());
    EXPECT_THAT(u, ElementsAre(10.0F, 10.0F));
    EXPECT_THAT(v, ElementsAre(0.0F, 3.0F));
    ::GEO_SHIFT(x.data(), y.data(), 2, 6000010, 20, std::numbers::pi / 2, u.data(), v.data());
    EXPECT_THAT(u[1], FloatEq(3)); // a quarter turn: north becomes u

    const std::array<float, 3> us = {5, 25, 15};
    const std::array<float, 3> vs = {-1, 12, 3};
    std::array<std::int32_t, 4> cells{};
    std::array<float, 4> bounds{};
    ::SET_SUB_GRID_AREA(us.data(), vs.data(), 3, 10, 5, 2, &cells[0], &cells[1], &cells[2], &cells[3], &bounds[0],
                        &bounds[1], &bounds[2], &bounds[3]);
    // Rows by v: -1 is below the first, 12 in the second. Columns by u: 5 in the first, 25 past the second and last.
    EXPECT_THAT(cells, ElementsAre(0, 1, 2, 2));
    EXPECT_THAT(bounds, ElementsAre(5.0F, 25.0F, -1.0F, 12.0F));
}

TEST(ExportedCells, OfARegionAndOfASegment)
{
    // From (2.5, 2) to (7.5, 6) over cells of 2: columns 2 to 4 and rows 2 and 3 of a window of 5 by 4.
    const std::array<float, 6> u = {2.5F, 7.5F, 7.5F, 2.5F, 2.5F, 7.5F};
    const std::array<float, 6> v = {2, 2, 6, 6, 2, 2};
    const std::array<std::int32_t, 1> ends = {5};
    std::array<std::uint8_t, 20> flags{};
    flags.fill(9);
    EXPECT_EQ(::grid_inside_polygon(u.data(), v.data(), 6, ends.data(), 1, 2, 1, 4, 1, 5, flags.data()), 6);
    EXPECT_THAT(flags, ElementsAre(0, 0, 0, 0, 0, //
                                   0, 1, 1, 1, 0, //
                                   0, 1, 1, 1, 0, //
                                   0, 0, 0, 0, 0));
    EXPECT_EQ(::grid_inside_polygon(u.data(), v.data(), 6, ends.data(), 1, 2, 2, 1, 1, 5, nullptr), 0); // no window

    std::array<std::int32_t, 4> rows{};
    std::array<std::int32_t, 4> columns{};
    EXPECT_EQ(::gridline(1, 1, 5, 1, 2, 4, rows.data(), columns.data()), 3);
    EXPECT_THAT(rows, ElementsAre(1, 1, 1, 0));
    EXPECT_THAT(columns, ElementsAre(1, 2, 3, 0));
}

TEST(ExportedCells, MoreThanTheLimitEndTheRun)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        std::int32_t row = 0;
        std::int32_t column = 0;
        ::gridline(1, 1, 5, 1, 2, 1, &row, &column);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.console, "SORRY - Exceeded limit of 1 HX cells per HX polyline segment.  Contact "
                           "SUPPORT_CONTACT.\n" +
                               kExits);
}

TEST(ExportedCells, PlacesThatAreNoneEndTheRun)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        std::int32_t row = 0;
        std::int32_t column = 0;
        ::gridline(1, 1, std::numeric_limits<float>::infinity(), 1, 2, 5, &row, &column);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.console, "should not be here - gridline - intersection point - contact SUPPORT_CONTACT\n" + kExits);
}

} // namespace
} // namespace gridforge::test
