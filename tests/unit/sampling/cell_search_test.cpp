#include "sampling/cell_search.h"

#include "plane/geometry.h"
#include "support/searched_cells.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace gridforge::test {
namespace {

constexpr float kNullCell = -9999.0F;

std::optional<sampling::FoundCell> plainNearest(const sampling::CellSearch& s, const GridHeader& h, const Grid& cells)
{
    std::optional<sampling::FoundCell> best;
    float distance = 99999.0F;
    forEachSearched(s, h, cells, [&](float value, double x, double y) {
        const float d = DISTANCE_8(s.x, s.y, x, y);
        if (d < distance) {
            distance = d;
            best = sampling::FoundCell{value, d, x, y};
        }
    });
    return best;
}

// Cells get numbers of their own but for a few equal ones; `nulls` of 100 are null.
void make(SearchedGrid& made, std::mt19937& random, int nulls)
{
    std::uniform_int_distribution<int> size(1, 200);
    std::uniform_int_distribution<int> hundred(0, 99);
    const std::int32_t rows = size(random);
    const std::int32_t columns = size(random);
    const bool far = hundred(random) < 50;
    const float cellsize = std::array{1.0F, 0.99993681F, 2.5F, 100.0F}[static_cast<std::size_t>(hundred(random)) % 4];
    GridHeader& h = made.header;
    h = headerOf(rows, columns, far ? 499403.841857712 : 0, far ? 6173739.2532704433 : 0, cellsize);
    h.null = kNullCell;
    ASSERT_TRUE(made.cells.allocate(h.nrows, h.ncols));
    float number = 0;
    for (float& cell : made.cells.cells()) {
        number += 1;
        cell = hundred(random) < nulls ? kNullCell : hundred(random) < 20 ? 7.0F : number;
    }
    // Whole blocks of nulls, as dry land.
    for (int block = hundred(random) % 4; block > 0; --block) {
        const std::int32_t row = size(random);
        const std::int32_t column = size(random);
        for (std::int32_t r = row; r <= std::min(row + 90, h.nrows); ++r) {
            for (std::int32_t c = column; c <= std::min(column + 90, h.ncols); ++c) {
                made.cells(r, c) = kNullCell;
            }
        }
    }
}

TEST(CellSearch, FindsWhatThePlainLoopFinds)
{
    std::mt19937 random(20240611);
    std::uniform_real_distribution<float> share(0, 120);
    int searched = 0;
    int found = 0;
    for (int grid = 0; grid < 300; ++grid) {
        SearchedGrid made;
        make(made, random, std::array{0, 50, 95, 99, 100}[static_cast<std::size_t>(grid) % 5]);
        const GridHeader& h = made.header;
        sampling::EmptyTiles tiles(h, made.cells);
        for (int point = 0; point < 30; ++point) {
            const double x = placeOn(h.xll, h.cellsize8, h.ncols, random);
            const double y = placeOn(h.yll, h.cellsize8, h.nrows, random);
            const sampling::CellSearch search = sampling::searchAround(h, x, y, share(random) * h.cellsize);
            if (!isWithinGrid(search.window, h)) {
                continue;
            }
            ++searched;
            const auto wanted = plainNearest(search, h, made.cells);
            found += wanted ? 1 : 0;
            expectSame(sampling::nearestCell(search, h, made.cells, tiles), wanted);
            ASSERT_FALSE(testing::Test::HasFailure()) << "grid " << grid << ", point " << point;
        }
    }
    EXPECT_GT(searched, 1000);
    EXPECT_GT(found, 300);
    EXPECT_LT(found, searched);
}

TEST(CellSearch, FindsOddCellsAsThePlainLoopDoes)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> share(0, 20);
    int found = 0;
    for (const float null : kOddNulls) {
        for (std::uint32_t seed = 1; seed <= 6; ++seed) {
            SearchedGrid made;
            makeOdd(made, 70, 60, null, seed);
            const GridHeader& h = made.header;
            sampling::EmptyTiles tiles(h, made.cells);
            for (int point = 0; point < 100; ++point) {
                const double x = placeOn(h.xll, h.cellsize8, h.ncols, random);
                const double y = placeOn(h.yll, h.cellsize8, h.nrows, random);
                const sampling::CellSearch search = sampling::searchAround(h, x, y, share(random) * h.cellsize);
                if (!isWithinGrid(search.window, h)) {
                    continue;
                }
                const auto wanted = plainNearest(search, h, made.cells);
                found += wanted ? 1 : 0;
                expectSame(sampling::nearestCell(search, h, made.cells, tiles), wanted);
                ASSERT_FALSE(testing::Test::HasFailure())
                    << "null " << null << ", grid " << seed << ", point " << point;
            }
        }
    }
    EXPECT_GT(found, 1000);
}

// A grid of `rows` by `columns` cells of 1, each 10 row + column, with its corner in the origin.
void numbered(SearchedGrid& made, std::int32_t rows, std::int32_t columns)
{
    made.header = headerOf(rows, columns, 0, 0, 1.0F);
    ASSERT_TRUE(made.cells.allocate(rows, columns));
    for (std::int32_t r = 1; r <= rows; ++r) {
        for (std::int32_t c = 1; c <= columns; ++c) {
            made.cells(r, c) = static_cast<float>(10 * r + c);
        }
    }
}

// By tiles of which nothing is known yet.
std::optional<sampling::FoundCell> nearest(const SearchedGrid& made, const sampling::CellSearch& search)
{
    sampling::EmptyTiles tiles(made.header, made.cells);
    return sampling::nearestCell(search, made.header, made.cells, tiles);
}

TEST(NearestCell, OfEquallyNearOnesTakesTheFirstFromTheSouthWest)
{
    SearchedGrid made;
    numbered(made, 9, 9);
    const sampling::CellSearch search = sampling::searchAround(made.header, 4.5, 4.5, 6.0F);
    EXPECT_EQ(nearest(made, search)->value, 44); // corners (4, 4), (5, 4), (4, 5), (5, 5)
    made.cells(4, 4) = kNullCell;
    EXPECT_EQ(nearest(made, search)->value, 45);
    made.cells(4, 5) = kNullCell;
    EXPECT_EQ(nearest(made, search)->value, 54);
    made.cells(5, 4) = kNullCell;
    EXPECT_EQ(nearest(made, search)->value, 55);
}

TEST(NearestCell, MeasuresToTheNorthEastCorner)
{
    SearchedGrid made;
    numbered(made, 9, 9);
    const auto found = nearest(made, sampling::searchAround(made.header, 4.3, 4.4, 4.0F));
    EXPECT_EQ(found->value, 44); // the cell (5, 5) holds the point, but its corner is further
    EXPECT_FLOAT_EQ(found->distance, 0.5F);
    EXPECT_EQ(found->x, 4);
    EXPECT_EQ(found->y, 4);
}

TEST(NearestCell, FindsNothingBeyondThePolygonOrInAnEmptyWindow)
{
    SearchedGrid made;
    numbered(made, 9, 9);
    EXPECT_FALSE(nearest(made, sampling::searchAround(made.header, 4.5, 4.5, 1.0F))); // corners 0.71 away
    EXPECT_FALSE(nearest(made, sampling::searchAround(made.header, 4.5, 4.5, -4.0F)));
}

TEST(NearestCell, FindsNothingAt99999OrFurther)
{
    SearchedGrid made;
    numbered(made, 9, 9);
    made.header.cellsize = 100000.0F;
    made.header.cellsize8 = 100000.0;
    for (float& cell : made.cells.cells()) {
        cell = kNullCell;
    }
    made.cells(5, 5) = 55; // its corner is (500000, 500000)
    const auto from = [&](double distance) {
        return nearest(made, sampling::searchAround(made.header, 500000 - distance, 500000, 300000.0F));
    };
    EXPECT_FALSE(from(99999));
    ASSERT_TRUE(from(99998));
    EXPECT_EQ(from(99998)->distance, 99998.0F);
}

} // namespace
} // namespace gridforge::test
