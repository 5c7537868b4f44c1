#include "exports/lattice_cells.h"

#include "exports/plane_for_callers.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace gridforge::exports {
namespace {

using testing::ElementsAre;

// A region of rings, each with its closing vertex, in the layout of slots behind them.
struct Region {
    std::vector<float> u;
    std::vector<float> v;
    std::vector<std::int32_t> ir;

    void add(const std::vector<std::pair<float, float>>& ring)
    {
        for (const auto& [x, y] : ring) {
            u.push_back(x);
            v.push_back(y);
        }
        ir.push_back(static_cast<std::int32_t>(u.size()));
        u.push_back(ring[1].first);
        v.push_back(ring[1].second);
    }
    std::int32_t np() const { return static_cast<std::int32_t>(u.size()); }
    std::int32_t nr() const { return static_cast<std::int32_t>(ir.size()); }
};

Region rectangle(float u1, float v1, float u2, float v2)
{
    Region region;
    region.add({{u1, v1}, {u2, v1}, {u2, v2}, {u1, v2}, {u1, v1}});
    return region;
}

// The cells of size 2 within the bounds of a region, held between `margin` and the lattice's size less it.
CellWindow boundsWindow(const Region& region, std::int32_t rows, std::int32_t columns, std::int32_t margin)
{
    const SubGridArea area = SET_SUB_GRID_AREA(region.u, region.v, 2, rows, columns);
    const std::int32_t first = std::max(margin, 1);
    return {std::max(area.iLow, first), std::min(area.iHigh, rows - margin), std::max(area.jLow, first),
            std::min(area.jHigh, columns - margin)};
}

// The marked cells of a lattice of cells of size 2, a line of text a row, north first.
std::string marks(const Region& region, std::int32_t rows, std::int32_t columns, std::int64_t& count,
                  std::int32_t margin = 0)
{
    const CellWindow window = boundsWindow(region, rows, columns, margin);
    std::vector<std::uint8_t> flags(window.cells(), 7);
    count = grid_inside_polygon(region.u, region.v, region.np(), region.ir, region.nr(), 2, window, flags).value();
    std::string text;
    for (std::int32_t row = rows; row >= 1; --row) {
        for (std::int32_t column = 1; column <= columns; ++column) {
            const bool inWindow = row >= window.firstRow && row <= window.lastRow && column >= window.firstColumn &&
                                  column <= window.lastColumn;
            const auto place = static_cast<std::size_t>(row - window.firstRow) * window.columns() +
                               static_cast<std::size_t>(column - window.firstColumn);
            text += inWindow && flags[place] != 0 ? '#' : '.';
        }
        text += '/';
    }
    return text;
}

TEST(LatticeCell, CountsFromOneBehindTheAxes)
{
    EXPECT_EQ(latticeCell(0, 0, 2), (LatticeCell{1, 1}));
    EXPECT_EQ(latticeCell(1.9F, 4, 2), (LatticeCell{3, 1}));
    EXPECT_EQ(latticeCell(-0.1F, 2, 2), (LatticeCell{2, 0}));
    EXPECT_EQ(latticeCell(1e30F, -1e30F, 2).column, 2147483647);
}

TEST(GridInsidePolygon, MarksCellsOnTheirMiddleLines)
{
    std::int64_t count = 0;
    // Rows of cells from 0 to 2 and so on, with middle lines at 1, 3, 5, 7; the rectangle goes from 2.5 to 5.5.
    EXPECT_EQ(marks(rectangle(3, 2.5F, 7, 5.5F), 4, 5, count), "...../.###./.###./...../");
    EXPECT_EQ(count, 6);
    // A line through the lower side belongs to it, one through the upper side does not.
    EXPECT_EQ(marks(rectangle(3, 3, 7, 5), 4, 5, count), "...../...../.###./...../");
    EXPECT_EQ(count, 3);
}

TEST(GridInsidePolygon, ARegionWithinACellOrBetweenTheLinesMarksNothing)
{
    std::int64_t count = 7;
    EXPECT_EQ(marks(rectangle(2.2F, 2, 3.8F, 6), 4, 5, count), "...../...../...../...../");
    EXPECT_EQ(count, 0);
    EXPECT_EQ(marks(rectangle(0, 1.5F, 10, 2.5F), 4, 5, count), "...../...../...../...../");
}

TEST(GridInsidePolygon, AHoleTakesOutWhatItCoversButNotTheCellsOfItsSides)
{
    Region region = rectangle(0, 0, 14, 6);
    region.add({{5, 2}, {9, 2}, {9, 4}, {5, 4}, {5, 2}});
    std::int64_t count = 0;
    EXPECT_EQ(marks(region, 3, 7, count), "#######/###.###/#######/");
    EXPECT_EQ(count, 20);
}

TEST(GridInsidePolygon, WhatLiesBeforeTheWindowCountsOnItsFirstCell)
{
    std::int64_t count = 0;
    EXPECT_EQ(marks(rectangle(-20, -20, 5, 3.5F), 3, 4, count), "..../###./###./");
    EXPECT_EQ(marks(rectangle(-20, -20, 50, 50), 3, 4, count, 1), "..../###./###./");
    EXPECT_EQ(count, 6);
}

TEST(GridInsidePolygon, RingsThatEndBeforeTheVerticesAreReported)
{
    Region region = rectangle(0, 0, 9, 9);
    region.add({{1, 1}, {2, 1}, {2, 2}, {1, 1}});
    const CellWindow window{1, 5, 1, 5};
    std::vector<std::uint8_t> flags(window.cells());
    EXPECT_TRUE(grid_inside_polygon(region.u, region.v, region.np(), region.ir, 2, 2, window, flags).has_value());
    EXPECT_EQ(grid_inside_polygon(region.u, region.v, region.np(), region.ir, 1, 2, window, flags), std::nullopt);
}

TEST(GridInsidePolygon, IsThatOfCountingForEachCell)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<float> place(-5, 25);
    for (int round = 0; round < 300; ++round) {
        Region region;
        for (int ring = 0; ring < 1 + round % 3; ++ring) {
            std::vector<std::pair<float, float>> vertices;
            for (int i = 0; i < 3 + round % 5; ++i) {
                vertices.emplace_back(place(random), round % 2 == 0 ? std::round(place(random)) : place(random));
            }
            vertices.push_back(vertices.front());
            region.add(vertices);
        }
        std::int64_t count = 0;
        const std::string got = marks(region, 10, 10, count);

        const CellWindow window = boundsWindow(region, 10, 10, 0);
        std::string want;
        for (std::int32_t row = 10; row >= 1; --row) {
            const double line = 2.0 * row - 1.0;
            std::vector<int> crossings(11, 0);
            std::size_t first = 0;
            for (const std::int32_t end : region.ir) {
                for (std::size_t i = first; i + 1 < static_cast<std::size_t>(end); ++i) {
                    const double u1 = region.u[i];
                    const double v1 = region.v[i];
                    const double u2 = region.u[i + 1];
                    const double v2 = region.v[i + 1];
                    if (std::min(v1, v2) <= line && line < std::max(v1, v2)) {
                        const double cell = std::floor((u1 + (u2 - u1) * ((line - v1) / (v2 - v1))) / 2.0) + 1.0;
                        const double held = std::max(cell, static_cast<double>(window.firstColumn));
                        if (held <= window.lastColumn) {
                            ++crossings[static_cast<std::size_t>(held)];
                        }
                    }
                }
                first = static_cast<std::size_t>(end) + 1;
            }
            int before = 0;
            for (std::size_t column = 1; column <= 10; ++column) {
                const int own = crossings[column];
                const bool inWindow = row >= window.firstRow && row <= window.lastRow &&
                                      static_cast<std::int32_t>(column) >= window.firstColumn &&
                                      static_cast<std::int32_t>(column) <= window.lastColumn;
                want += inWindow && (own % 2 == 1 || (before + own) % 2 == 1) ? '#' : '.';
                before += own;
            }
            want += '/';
        }
        ASSERT_EQ(got, want) << round;
        ASSERT_EQ(count, std::count(want.begin(), want.end(), '#'));
    }
}

std::vector<LatticeCell> line(float u1, float v1, float u2, float v2)
{
    std::vector<LatticeCell> cells;
    EXPECT_EQ(gridline(u1, v1, u2, v2, 2, 1000, cells), GridlineEnd::done);
    return cells;
}

TEST(Gridline, PassesFromCellToCell)
{
    EXPECT_THAT(line(1, 1, 1, 1), ElementsAre(LatticeCell{1, 1}));
    EXPECT_THAT(line(1, 1, 7, 1),
                ElementsAre(LatticeCell{1, 1}, LatticeCell{1, 2}, LatticeCell{1, 3}, LatticeCell{1, 4}));
    EXPECT_THAT(line(1, 5, 1, 1), ElementsAre(LatticeCell{3, 1}, LatticeCell{2, 1}, LatticeCell{1, 1}));
    // From (1, 1) up by one in two: the sides at u 2 and 4 come at v 1.5 and 2.5, that at v 2 at u 3.
    EXPECT_THAT(line(1, 1, 5, 3),
                ElementsAre(LatticeCell{1, 1}, LatticeCell{1, 2}, LatticeCell{2, 2}, LatticeCell{2, 3}));
    EXPECT_THAT(line(5, 3, 1, 1),
                ElementsAre(LatticeCell{2, 3}, LatticeCell{2, 2}, LatticeCell{1, 2}, LatticeCell{1, 1}));
}

TEST(Gridline, StepsAcrossACorner)
{
    EXPECT_THAT(line(1, 1, 5, 5), ElementsAre(LatticeCell{1, 1}, LatticeCell{2, 2}, LatticeCell{3, 3}));
    EXPECT_THAT(line(5, 1, 1, 5), ElementsAre(LatticeCell{1, 3}, LatticeCell{2, 2}, LatticeCell{3, 1}));
}

TEST(Gridline, RunsOnBelowTheAxes)
{
    EXPECT_THAT(line(-3, 1, 1, 1), ElementsAre(LatticeCell{1, -1}, LatticeCell{1, 0}, LatticeCell{1, 1}));
}

TEST(Gridline, EachCellTouchesTheSegmentAndTheNextCell)
{
    std::mt19937 random(4);
    std::uniform_real_distribution<float> place(-30, 30);
    for (int round = 0; round < 500; ++round) {
        const float u1 = place(random);
        const float v1 = place(random);
        const float u2 = place(random);
        const float v2 = place(random);
        const auto cells = line(u1, v1, u2, v2);
        ASSERT_EQ(cells.front(), latticeCell(u1, v1, 2));
        ASSERT_EQ(cells.back(), latticeCell(u2, v2, 2));
        for (std::size_t i = 0; i < cells.size(); ++i) {
            // The signed areas of the cell's corners with the segment's line are not all of one sign.
            const double west = 2.0 * cells[i].column - 2;
            const double south = 2.0 * cells[i].row - 2;
            double least = std::numeric_limits<double>::max();
            double most = std::numeric_limits<double>::lowest();
            for (const double du : {0.0, 2.0}) {
                for (const double dv : {0.0, 2.0}) {
                    const double side = (u2 - u1) * (south + dv - v1) - (v2 - v1) * (west + du - u1);
                    least = std::min(least, side);
                    most = std::max(most, side);
                }
            }
            ASSERT_LE(least, 1e-3);
            ASSERT_GE(most, -1e-3);
            if (i > 0) {
                ASSERT_EQ(std::abs(cells[i].row - cells[i - 1].row) + std::abs(cells[i].column - cells[i - 1].column),
                          1);
            }
        }
    }
}

TEST(Gridline, MoreCellsThanTheLimitAreReported)
{
    std::vector<LatticeCell> cells;
    EXPECT_EQ(gridline(1, 1, 9, 1, 2, 5, cells), GridlineEnd::done);
    EXPECT_EQ(cells.size(), 5U);
    for (const float far : {11.0F, 1e30F}) {
        cells.clear();
        EXPECT_EQ(gridline(1, 1, far, 1, 2, 5, cells), GridlineEnd::pastLimit);
        EXPECT_EQ(cells.size(), 5U);
    }
}

TEST(Gridline, PlacesThatAreNoneAreReported)
{
    std::vector<LatticeCell> cells;
    for (const float none : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        EXPECT_EQ(gridline(1, 1, none, 1, 2, 5, cells), GridlineEnd::noPlace);
        EXPECT_EQ(gridline(none, 1, 1, 1, 2, 5, cells), GridlineEnd::noPlace);
    }
    EXPECT_TRUE(cells.empty());
}

} // namespace
} // namespace gridforge::exports
