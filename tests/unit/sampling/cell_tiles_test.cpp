#include "sampling/cell_tiles.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

TEST(CellTiles, HaveSixtyFourRowsAndColumns)
{
    EXPECT_EQ(sampling::tileOf(1), 0);
    EXPECT_EQ(sampling::tileOf(64), 0);
    EXPECT_EQ(sampling::tileOf(65), 1);
    EXPECT_EQ(sampling::firstOfTile(0), 1);
    EXPECT_EQ(sampling::firstOfTile(2), 129);
}

TEST(CellTiles, AreEmptyWhereAllCellsAreNull)
{
    GridHeader header;
    header.nrows = 130; // tiles of 64, 64 and 2 rows
    header.ncols = 70;
    Grid cells;
    ASSERT_TRUE(cells.allocate(header.nrows, header.ncols));
    std::ranges::fill(cells.cells(), header.null);
    cells(64, 64) = 1;                                       // the last of its tile
    cells(65, 65) = std::numeric_limits<float>::quiet_NaN(); // is no null
    cells(130, 70) = -std::numeric_limits<float>::infinity();
    sampling::EmptyTiles tiles(header, cells);
    EXPECT_FALSE(tiles.isEmpty(0, 0));
    EXPECT_TRUE(tiles.isEmpty(0, 1));
    EXPECT_TRUE(tiles.isEmpty(1, 0));
    EXPECT_FALSE(tiles.isEmpty(1, 1));
    EXPECT_TRUE(tiles.isEmpty(2, 0));
    EXPECT_FALSE(tiles.isEmpty(2, 1));
    EXPECT_TRUE(tiles.isEmpty(2, 0)); // asked again
}

} // namespace
} // namespace gridforge::test
