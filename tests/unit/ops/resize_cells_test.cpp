#include "ops/resize_cells.h"

#include "plane/cell_array.h"
#include "run/rows.h"
#include "support/odd_cells.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

constexpr float kNullA = -9999.0F;

// Cells north row first.
Grid gridOf(std::int32_t nrows, std::int32_t ncols, const std::vector<float>& cells)
{
    Grid grid;
    EXPECT_TRUE(grid.allocate(nrows, ncols));
    std::ranges::copy(cells, grid.cells().begin());
    return grid;
}

using ops::ResizeMethod;

// The rows are given a few at a time.
std::vector<float> resized(ResizeMethod method, const Grid& grid, std::int32_t factor, float null = kNullA)
{
    constexpr std::int32_t kAtOnce = 3;
    const ops::Tiling tiling = ops::tilingOf(grid.nrows(), grid.ncols(), factor);
    Grid output;
    EXPECT_TRUE(output.allocate(tiling.rows, tiling.columns));
    ops::TileRow tiles = ops::emptyTiles(method, tiling, null);
    for (std::int32_t row = 1; row <= tiling.rows; ++row) {
        const ops::CellRows under = ops::rowsUnder(tiling, row);
        for (std::int32_t first = under.first; first <= under.last; first += kAtOnce) {
            ops::takeRows(run::rowsOf(grid, first, std::min(first + kAtOnce - 1, under.last)), tiles);
        }
        ops::finishTiles(tiles, output.row(row));
    }
    return {output.cells().begin(), output.cells().end()};
}

TEST(TilingOf, LeavesTheRestToTheLastTiles)
{
    const ops::Tiling tiling = ops::tilingOf(10, 9, 3);
    EXPECT_EQ(tiling.rows, 4);
    EXPECT_EQ(tiling.columns, 3);
    EXPECT_EQ(tiling.lastRows, 1);
    EXPECT_EQ(tiling.lastColumns, 3);
}

TEST(TilingOf, AFactorPastTheGridGivesOneTile)
{
    for (const std::int32_t factor : {5, 6, 2147483647}) {
        const ops::Tiling tiling = ops::tilingOf(5, 3, factor);
        EXPECT_EQ(tiling.rows, 1);
        EXPECT_EQ(tiling.columns, 1);
        EXPECT_EQ(tiling.lastRows, 5);
        EXPECT_EQ(tiling.lastColumns, 3);
    }
}

TEST(Tiles, StartInTheSouthWest)
{
    // Three columns by three rows in twos: the full tile is the south-west one.
    const Grid grid = gridOf(3, 3,
                             {31, 32, 33, //
                              21, 22, 23, //
                              11, 12, 13});
    EXPECT_THAT(resized(ResizeMethod::average, grid, 2),
                testing::ElementsAre(31.5F, 33, (11 + 12 + 21 + 22) / 4.0F, 18));
    EXPECT_THAT(resized(ResizeMethod::minimum, grid, 2), testing::ElementsAre(31, 33, 11, 13));
    EXPECT_THAT(resized(ResizeMethod::maximum, grid, 2), testing::ElementsAre(32, 33, 22, 23));
}

TEST(Tiles, PassOverNullCells)
{
    const Grid grid = gridOf(2, 4, {kNullA, 4, kNullA, kNullA, 1, kNullA, kNullA, kNullA});
    EXPECT_THAT(resized(ResizeMethod::average, grid, 2), testing::ElementsAre(2.5F, kNullA));
    EXPECT_THAT(resized(ResizeMethod::minimum, grid, 2), testing::ElementsAre(1, kNullA));
    EXPECT_THAT(resized(ResizeMethod::maximum, grid, 2), testing::ElementsAre(4, kNullA));
}

TEST(MinimumTiles, ATileWithNothingBelowItsStartIsNull)
{
    const Grid grid = gridOf(1, 4, {100000, 100001, 200000, 99999});
    EXPECT_THAT(resized(ResizeMethod::minimum, grid, 2), testing::ElementsAre(kNullA, 99999));
    EXPECT_THAT(resized(ResizeMethod::average, grid, 1), testing::ElementsAre(100000, 100001, 200000, 99999));
    EXPECT_THAT(resized(ResizeMethod::minimum, grid, 1), testing::ElementsAre(kNullA, kNullA, kNullA, 99999));
}

TEST(MaximumTiles, ANullAboveTheDataStands)
{
    const Grid grid = gridOf(1, 2, {3, 4});
    EXPECT_THAT(resized(ResizeMethod::maximum, grid, 2, 9999.0F), testing::ElementsAre(9999));
}

TEST(AverageTiles, SumsInDouble)
{
    // In single precision 16777216 + 1 stays 16777216, and the sum of all four were 16777218.
    const Grid grid = gridOf(2, 2, {1, 1, 16777216, 1});
    EXPECT_THAT(resized(ResizeMethod::average, grid, 2), testing::ElementsAre(4194304.75F));
}

// The tiles one by one, as they read in words.
std::vector<float> plainTiles(ResizeMethod kind, const Grid& grid, std::int32_t factor, float null)
{
    const std::int32_t rows = (grid.nrows() + factor - 1) / factor;
    const std::int32_t columns = (grid.ncols() + factor - 1) / factor;
    std::vector<float> result;
    for (std::int32_t r = rows; r >= 1; --r) {
        for (std::int32_t c = 1; c <= columns; ++c) {
            double sum = 0;
            int count = 0;
            float least = 100000.0F;
            float most = null;
            for (std::int32_t i = (r - 1) * factor + 1; i <= std::min(r * factor, grid.nrows()); ++i) {
                for (std::int32_t j = (c - 1) * factor + 1; j <= std::min(c * factor, grid.ncols()); ++j) {
                    const float cell = grid(i, j);
                    if (cell != null) {
                        sum += static_cast<double>(cell);
                        ++count;
                        least = std::min(least, cell);
                        most = std::max(most, cell);
                    }
                }
            }
            const float average =
                count > 0 ? static_cast<float>(sum / static_cast<double>(static_cast<float>(count))) : null;
            least = least == 100000.0F ? null : least;
            result.push_back(kind == ResizeMethod::average ? average : kind == ResizeMethod::minimum ? least : most);
        }
    }
    return result;
}

TEST(Tiles, AgreeWithThePlainWalkOnRandomGrids)
{
    for (const auto& [nrows, ncols] : {std::pair{1, 1}, {1, 50}, {50, 1}, {23, 37}, {30, 24}}) {
        for (const std::int32_t factor : {1, 2, 3, 5, 7, 29, 100}) {
            const auto count = static_cast<std::size_t>(nrows) * static_cast<std::size_t>(ncols);
            const auto seed = static_cast<std::uint32_t>(nrows * 100 + factor);
            const Grid grid = gridOf(nrows, ncols, oddCells(count, kNullA, seed));
            for (const ResizeMethod kind : {ResizeMethod::average, ResizeMethod::minimum, ResizeMethod::maximum}) {
                EXPECT_EQ(bitsOf(resized(kind, grid, factor)), bitsOf(plainTiles(kind, grid, factor, kNullA)))
                    << nrows << " by " << ncols << " by " << factor;
            }
        }
    }
}

TEST(Tiles, AreTheSameHoweverTheRowsUnderThemAreCut)
{
    const Grid grid = gridOf(23, 37, oddCells(std::size_t{23} * 37, kNullA, 7));
    const ops::Tiling tiling = ops::tilingOf(23, 37, 23);
    for (const ResizeMethod method : {ResizeMethod::average, ResizeMethod::minimum, ResizeMethod::maximum}) {
        const std::vector<float> plain = plainTiles(method, grid, 23, kNullA);
        ops::TileRow tiles = ops::emptyTiles(method, tiling, kNullA);
        for (std::int32_t cut = 0; cut <= 23; ++cut) {
            std::vector<float> results(2);
            ops::takeRows(run::rowsOf(grid, 1, cut), tiles);
            ops::takeRows(run::rowsOf(grid, cut + 1, 23), tiles);
            ops::finishTiles(tiles, results);
            EXPECT_EQ(bitsOf(results), bitsOf(plain)) << cut;
        }
    }
}

std::pair<std::int32_t, std::int32_t> bounds(const ops::CellRows& rows)
{
    return {rows.first, rows.last};
}

TEST(RowsUnder, AreThoseOfATileAndFewerInTheNorth)
{
    const ops::Tiling tiling = ops::tilingOf(10, 4, 4);
    EXPECT_EQ(bounds(ops::rowsUnder(tiling, 1)), (std::pair{1, 4}));
    EXPECT_EQ(bounds(ops::rowsUnder(tiling, 2)), (std::pair{5, 8}));
    EXPECT_EQ(bounds(ops::rowsUnder(tiling, 3)), (std::pair{9, 10}));
    EXPECT_EQ(bounds(ops::tiledRows(tiling, {2, 2})), (std::pair{5, 8}));
    EXPECT_EQ(bounds(ops::tiledRows(tiling, {2, 3})), (std::pair{5, 10}));
}

// Past 2^24 the single precision of the tile count is coarser than a column: 16777219 columns count as 16777220 tiles, and
// 16777217 as 16777216.
TEST(Tiles, StayInsideTheGridWhereTheirCountIsRounded)
{
    for (const std::int32_t ncols : {16777217, 16777219}) {
        Grid grid;
        ASSERT_TRUE(grid.allocate(1, ncols));
        grid(1, ncols) = 7;
        const std::vector<float> output = resized(ResizeMethod::maximum, grid, 1);
        if (ncols == 16777219) {
            ASSERT_EQ(output.size(), 16777220U);
            EXPECT_EQ(output[16777218], 7);
            EXPECT_EQ(output[16777219], kNullA); // nothing lies under it
        } else {
            ASSERT_EQ(output.size(), 16777216U);
            EXPECT_EQ(output.back(), 0);
        }
    }
}

TEST(TiledRows, EndWithTheGridWhereTheirCountIsRounded)
{
    const ops::Tiling tiling = ops::tilingOf(16777219, 1, 1);
    ASSERT_EQ(tiling.rows, 16777220);
    const ops::CellRows last = ops::tiledRows(tiling, {16777218, 16777220});
    EXPECT_EQ(last.first, 16777218);
    EXPECT_EQ(last.last, 16777219);
    EXPECT_EQ(ops::tiledRows(tiling, {16777220, 16777220}).count(), 0);
    EXPECT_EQ(ops::rowsUnder(tiling, 16777220).count(), 0);
}

TEST(AverageTiles, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    std::vector<float> opposite(kVectorsAndRest * 2);
    for (std::size_t i = 0; i < opposite.size(); ++i) {
        opposite[i] = i % 2 == 0 ? kInfinity : -kInfinity;
    }
    const auto columns = static_cast<std::int32_t>(opposite.size());
    EXPECT_TRUE(allQuietNaN(resized(ResizeMethod::average, gridOf(1, columns, opposite), 2)));
    EXPECT_TRUE(allQuietNaN(
        resized(ResizeMethod::average, gridOf(1, columns, std::vector<float>(opposite.size(), kOddNaN)), 2)));
}

} // namespace
} // namespace gridforge::test
