#include "sampling/cell_extremes.h"

#include "plane/cell_window.h"
#include "plane/geometry.h"
#include "support/searched_cells.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace gridforge::test {
namespace {

constexpr float kNullCell = -9999.0F;

sampling::FoundExtremes plainExtremes(const sampling::CellSearch& s, const GridHeader& h, const Grid& cells)
{
    sampling::FoundExtremes found;
    float low = 99999.0F;
    float high = -99999.0F;
    forEachSearched(s, h, cells, [&](float value, double x, double y) {
        if (value < low) {
            low = value;
            found.lowest = sampling::FoundCell{low, DISTANCE_8(s.x, s.y, x, y), x, y};
        }
        if (value > high) {
            high = value;
            found.highest = sampling::FoundCell{high, DISTANCE_8(s.x, s.y, x, y), x, y};
        }
    });
    return found;
}

void setLattice(SearchedGrid& made, std::int32_t rows, std::int32_t columns, bool far, float cellsize)
{
    made.header = headerOf(rows, columns, far ? 499403.841857712 : 0, far ? 6173739.2532704433 : 0, cellsize);
    made.header.null = kNullCell;
    ASSERT_TRUE(made.cells.allocate(rows, columns));
}

// Surfaces on which one pass after another has to look into rows: slopes, a hill, a bowl, steps of equal cells, noise,
// and cells of no ordinary value.
float surface(int kind, double x, double y, std::mt19937& random)
{
    const auto noise = [&] { return static_cast<float>(random() % 1000) * 0.01F; };
    switch (kind) {
    case 0: return static_cast<float>(x + 2 * y);
    case 1: return static_cast<float>(-y);
    case 2: return static_cast<float>(-std::hypot(x - 100, y - 90));
    case 3: return static_cast<float>(std::hypot(x - 100, y - 90));
    case 4: return static_cast<float>(std::floor(x / 40) - std::floor(y / 30));
    case 5: return 7.0F;
    case 6: return noise();
    default: {
        constexpr std::array<float, 8> kOdd = {0.0F,
                                               -0.0F,
                                               std::numeric_limits<float>::quiet_NaN(),
                                               std::numeric_limits<float>::infinity(),
                                               -std::numeric_limits<float>::infinity(),
                                               99999.0F,
                                               -99999.0F,
                                               1e-45F};
        return random() % 50 == 0 ? kOdd[random() % kOdd.size()] : std::floor(noise());
    }
    }
}

TEST(CellExtremes, AreThoseOfThePlainLoop)
{
    std::mt19937 random(20240611);
    int searched = 0;
    int found = 0;
    for (int grid = 0; grid < 160; ++grid) {
        SearchedGrid made;
        const auto size = [&] {
            return static_cast<std::int32_t>(grid % 4 == 0 ? 1 + random() % 70 : 60 + random() % 220);
        };
        setLattice(made, size(), size(), random() % 2 == 0,
                   std::array{1.0F, 0.99993681F, 2.5F, 100.0F}[static_cast<std::size_t>(grid / 8) % 4]);
        const GridHeader& h = made.header;
        const auto nulls = std::array{0U, 10U, 50U, 99U, 100U}[static_cast<std::size_t>(grid) % 5];
        for (std::int32_t r = 1; r <= h.nrows; ++r) {
            for (std::int32_t c = 1; c <= h.ncols; ++c) {
                made.cells(r, c) = random() % 100 < nulls ? kNullCell : surface(grid % 8, c, r, random);
            }
        }
        sampling::ExtremeSearch extremes(h, made.cells);
        std::uniform_real_distribution<float> share(0, static_cast<float>(std::min(h.nrows, h.ncols)));
        for (int point = 0; point < 20; ++point) {
            const double x = placeOn(h.xll, h.cellsize8, h.ncols, random);
            const double y = placeOn(h.yll, h.cellsize8, h.nrows, random);
            const sampling::CellSearch search = sampling::searchAround(h, x, y, share(random) * h.cellsize);
            if (!isWithinGrid(search.window, h)) {
                continue;
            }
            const sampling::FoundExtremes wanted = plainExtremes(search, h, made.cells);
            const sampling::FoundExtremes got = extremes.find(search);
            expectSame(got.lowest, wanted.lowest);
            expectSame(got.highest, wanted.highest);
            ASSERT_FALSE(testing::Test::HasFailure()) << "grid " << grid << ", point " << point;
            ++searched;
            found += wanted.lowest ? 1 : 0;
        }
    }
    EXPECT_GT(searched, 800);
    EXPECT_GT(found, 500);
    EXPECT_LT(found, searched);
}

// The lowest and the highest cell of a tile may lie in the circle and outside the window.
TEST(CellExtremes, AreThoseOfTheWindow)
{
    constexpr std::array<std::array<std::int32_t, 2>, 4> kSpots = {{{70, 70}, {70, 80}, {80, 80}, {80, 70}}};
    for (std::size_t first = 0; first < kSpots.size(); ++first) {
        SearchedGrid made;
        setLattice(made, 150, 150, false, 1);
        const GridHeader& h = made.header;
        std::ranges::fill(made.cells.cells(), 0.0F);
        for (std::size_t i = 0; i < kSpots.size(); ++i) {
            const auto [row, column] = kSpots[(first + i) % kSpots.size()];
            made.cells(row, column) = std::array{2.0F, -2.0F, -1.0F, 1.0F}[i];
        }
        sampling::ExtremeSearch extremes(h, made.cells);
        const sampling::CellSearch whole = sampling::searchAround(h, 75, 75, 60);
        for (std::int32_t CellWindow::*side :
             {&CellWindow::firstRow, &CellWindow::lastRow, &CellWindow::firstColumn, &CellWindow::lastColumn}) {
            sampling::CellSearch search = whole;
            search.window.*side = 75;
            const sampling::FoundExtremes wanted = plainExtremes(search, h, made.cells);
            const sampling::FoundExtremes got = extremes.find(search);
            expectSame(got.lowest, wanted.lowest);
            expectSame(got.highest, wanted.highest);
        }
    }
}

TEST(CellExtremes, OfOddCellsAreThoseOfThePlainLoop)
{
    std::mt19937 random(6);
    int lowest = 0;
    for (const float null : kOddNulls) {
        for (std::uint32_t seed = 1; seed <= 6; ++seed) {
            SearchedGrid made;
            makeOdd(made, 150, 170, null, seed); // of several tiles each way
            const GridHeader& h = made.header;
            sampling::ExtremeSearch extremes(h, made.cells);
            std::uniform_real_distribution<float> share(0, seed % 2 == 0 ? 6.0F : 150.0F);
            for (int point = 0; point < 60; ++point) {
                const double x = placeOn(h.xll, h.cellsize8, h.ncols, random);
                const double y = placeOn(h.yll, h.cellsize8, h.nrows, random);
                const sampling::CellSearch search = sampling::searchAround(h, x, y, share(random) * h.cellsize);
                if (!isWithinGrid(search.window, h)) {
                    continue;
                }
                const sampling::FoundExtremes wanted = plainExtremes(search, h, made.cells);
                const sampling::FoundExtremes got = extremes.find(search);
                expectSame(got.lowest, wanted.lowest);
                expectSame(got.highest, wanted.highest);
                ASSERT_FALSE(testing::Test::HasFailure())
                    << "null " << null << ", grid " << seed << ", point " << point;
                lowest += wanted.lowest ? 1 : 0;
            }
        }
    }
    EXPECT_GT(lowest, 500);
}

TEST(CellExtremes, KeepTheFirstOfEqualOnes)
{
    SearchedGrid made;
    setLattice(made, 200, 200, false, 1.0F);
    for (float& cell : made.cells.cells()) {
        cell = 3;
    }
    sampling::ExtremeSearch extremes(made.header, made.cells);
    const sampling::FoundExtremes near = extremes.find(sampling::searchAround(made.header, 4.5, 4.5, 2.0F));
    EXPECT_EQ(near.lowest->x, 4);
    EXPECT_EQ(near.lowest->y, 4);
    EXPECT_EQ(near.highest->x, 4);
    EXPECT_EQ(near.highest->y, 4);
    // Over many tiles: the southern vertex of the polygon is at 50.5, and half a unit above it the sides are 0.5 / tan 15 =
    // 1.87 to each side, from 98.63 on.
    const sampling::FoundExtremes wide = extremes.find(sampling::searchAround(made.header, 100.5, 100.5, 100.0F));
    EXPECT_EQ(wide.lowest->y, 51);
    EXPECT_EQ(wide.lowest->x, 99);
    EXPECT_EQ(wide.highest->x, 99);
}

TEST(CellExtremes, MayLieInTheFirstRowAndColumnOfTheGrid)
{
    SearchedGrid made;
    setLattice(made, 9, 9, false, 1.0F);
    for (float& cell : made.cells.cells()) {
        cell = 3;
    }
    made.cells(1, 2) = 1;
    made.cells(2, 1) = 5;
    sampling::CellSearch search = sampling::searchAround(made.header, 1.5, 1.5, 5.0F);
    search.window = withinGrid(search.window, made.header);
    sampling::ExtremeSearch extremes(made.header, made.cells);
    const sampling::FoundExtremes found = extremes.find(search);
    ASSERT_TRUE(found.lowest && found.highest);
    EXPECT_EQ(found.lowest->value, 1);
    EXPECT_EQ(found.lowest->x, 2);
    EXPECT_EQ(found.lowest->y, 1);
    EXPECT_EQ(found.highest->value, 5);
    EXPECT_EQ(found.highest->x, 1);
    EXPECT_EQ(found.highest->y, 2);
    // The other way round.
    made.cells(1, 2) = 5;
    made.cells(2, 1) = 1;
    sampling::ExtremeSearch turned(made.header, made.cells);
    EXPECT_EQ(turned.find(search).lowest->x, 1);
    EXPECT_EQ(turned.find(search).highest->y, 1);
}

TEST(CellExtremes, OfAnEmptyWindowAreNone)
{
    SearchedGrid made;
    setLattice(made, 9, 9, false, 1.0F);
    sampling::ExtremeSearch extremes(made.header, made.cells);
    const sampling::FoundExtremes found = extremes.find(sampling::searchAround(made.header, 4.5, 4.5, -4.0F));
    EXPECT_FALSE(found.lowest);
    EXPECT_FALSE(found.highest);
}

} // namespace
} // namespace gridforge::test
