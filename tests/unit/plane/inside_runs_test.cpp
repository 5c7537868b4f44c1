#include "plane/inside_runs.h"

#include "plane/geometry.h"
#include "sampling/search_polygon.h"
#include "support/lattice.h"
#include "support/sampled_region.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

TEST(RegionWindow, TruncatesBothBounds)
{
    const GridHeader header = headerOf(10, 10, 100, 200, 2);
    const CellWindow w = regionWindow(regionOf({103, 107.9, 105}, {204, 205, 209}), header);
    EXPECT_EQ(w.firstColumn, 1); // 3 / 2
    EXPECT_EQ(w.lastColumn, 4);  // 7.9 / 2 + 1
    EXPECT_EQ(w.firstRow, 2);    // 4 / 2
    EXPECT_EQ(w.lastRow, 5);     // 9 / 2 + 1
}

TEST(RegionWindow, LeftOfTheGridTruncatesTowardsZero)
{
    const CellWindow w = regionWindow(regionOf({-1.5, 0.5, 0.5}, {-0.5, -2.5, 0.5}), headerOf(10, 10, 0, 0, 1));
    EXPECT_EQ(w.firstColumn, -1);
    EXPECT_EQ(w.lastColumn, 1);
    EXPECT_EQ(w.firstRow, -2);
    EXPECT_EQ(w.lastRow, 1);
}

TEST(RegionWindow, FarCoordinatesStayInTheIntegers)
{
    const CellWindow w = regionWindow(regionOf({-1e300, 1e300, 0}, {-1e300, 1e300, 0}), headerOf(10, 10, 0, 0, 1));
    EXPECT_EQ(w.firstColumn, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(w.lastColumn, std::numeric_limits<std::int32_t>::max());
}

struct CellRun {
    std::int32_t row;
    std::int32_t first;
    std::int32_t count;
    bool operator==(const CellRun&) const = default;
};

std::vector<CellRun> runsOf(const GridHeader& header, const CellWindow& window, CellPlace place, InsideWalk& walk)
{
    std::vector<CellRun> runs;
    forEachInsideRun(header, window, place, walk, [&](std::int32_t row, std::int32_t first, std::int32_t count) {
        runs.push_back({row, first, count});
    });
    return runs;
}

TEST(InsideRuns, GoByRowsFromTheSouthAndFromTheWest)
{
    //   y          a U: two prongs above row 3
    //   6  #  #    (the corners of columns 2 and 6)
    //   3  ####
    const SampledRegion region =
        regionOf({1.5, 6.5, 6.5, 5.5, 5.5, 2.5, 2.5, 1.5}, {1.5, 1.5, 6.5, 6.5, 3.5, 3.5, 6.5, 6.5});
    const GridHeader header = headerOf(9, 9, 0, 0, 1);
    InsideWalk walk;
    prepareWalk(region, walk);
    EXPECT_THAT(runsOf(header, regionWindow(region, header), CellPlace::northEastCorner, walk),
                ElementsAre(CellRun{2, 2, 5}, CellRun{3, 2, 5}, CellRun{4, 2, 1}, CellRun{4, 6, 1}, CellRun{5, 2, 1},
                            CellRun{5, 6, 1}, CellRun{6, 2, 1}, CellRun{6, 6, 1}));
    // The centres of a grid that starts at 0.25 lie at 1.75 to 5.75 in columns 2 to 6, those of row 3 at 2.5.
    CellWindow one;
    one.firstRow = one.lastRow = 3;
    one.firstColumn = 1;
    one.lastColumn = 9;
    EXPECT_THAT(runsOf(headerOf(9, 9, 0.25, 0, 1), one, CellPlace::centre, walk), ElementsAre(CellRun{3, 2, 5}));
}

double placeOf(double origin, std::int32_t cell, const GridHeader& header, CellPlace place)
{
    if (place == CellPlace::centreInSingle) {
        const float before = static_cast<float>(cell) * header.cellsize;
        const float half = 0.5F * header.cellsize;
        return origin + static_cast<double>(before) - static_cast<double>(half);
    }
    const double half = place == CellPlace::centre ? 0.5 * header.cellsize8 : 0;
    return origin + static_cast<double>(static_cast<float>(cell)) * header.cellsize8 - half;
}

TEST(InsideRuns, AgreeWithThePlainTestOfEachCell)
{
    std::mt19937 random(5);
    const auto upTo = [&](int n) { return static_cast<double>(random() % static_cast<unsigned>(n)); };
    std::size_t inside = 0;
    InsideWalk walk;
    for (int round = 0; round < 400; ++round) {
        const bool large = round % 2 == 0;
        const GridHeader header =
            headerOf(30, 40, large ? 293000.25 : 0, large ? 6178000.5 : 0, round % 3 == 0 ? 0.7F : 1.0F);
        CellWindow window;
        window.firstRow = 1 + static_cast<std::int32_t>(upTo(4));
        window.firstColumn = 1 + static_cast<std::int32_t>(upTo(4));
        window.lastRow = header.nrows;
        window.lastColumn = header.ncols;
        const CellPlace place = std::array{CellPlace::centre, CellPlace::centreInSingle,
                                           CellPlace::northEastCorner}[static_cast<std::size_t>(round % 5 % 3)];
        std::vector<double> x;
        std::vector<double> y;
        for (int k = 0; k < 3 + round % 12; ++k) { // steps of a half meet corners, edges and each other
            x.push_back(header.xll + upTo(70) * 0.5);
            y.push_back(header.yll + upTo(50) * 0.5);
        }
        const SampledRegion region = regionOf(x, y);
        const sampling::SearchPolygon circle = sampling::searchPolygon(x[0], y[0], static_cast<float>(upTo(30)));
        const bool round12 = round % 7 == 0;
        round12 ? sampling::prepareWalk(circle, walk) : prepareWalk(region, walk);
        std::vector<CellRun> wanted;
        for (std::int32_t row = window.firstRow; row <= window.lastRow; ++row) {
            for (std::int32_t column = window.firstColumn; column <= window.lastColumn; ++column) {
                const double px = placeOf(header.xll, column, header, place);
                const double py = placeOf(header.yll, row, header, place);
                const auto np = static_cast<std::int32_t>(region.x.size());
                const std::array<std::int32_t, 1> ir = {np - 1};
                if (round12 ? !sampling::insideSearchPolygon(circle, px, py)
                            : !INSIDE_POLYGON_8(px, py, region.x, region.y, np, region.box.xmin, ir, 1)) {
                    continue;
                }
                ++inside;
                if (wanted.empty() || wanted.back().row != row || wanted.back().first + wanted.back().count != column) {
                    wanted.push_back({row, column, 0});
                }
                ++wanted.back().count;
            }
        }
        ASSERT_EQ(runsOf(header, window, place, walk), wanted) << round;
    }
    EXPECT_GT(inside, 10000U);
}

} // namespace
} // namespace gridforge::test
