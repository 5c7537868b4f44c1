#include "grid/lattice_check.h"

#include "support/child_run.h"
#include "support/consoles.h"
#include "support/lattice.h"

#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

std::string comparison(const GridHeader& first, const GridHeader& second)
{
    const ScratchFolder folder;
    return runInChild(folder, [&] { grid::compareGridDimensions(first, second); }).console;
}

const std::string kClosing = "ERROR - dimensions of grids do not match (see above for details).\n" + kExits;

TEST(CompareGridDimensions, ReportsEachDifference)
{
    const GridHeader first = headerOf(3, 4, 293000.5, -12.25, 2.0F);
    GridHeader second = first;
    second.nrows = 5;
    second.ncols = 6;
    second.xll += 1;
    second.yll += 0.5;
    second.cellsize8 = 2.5;
    EXPECT_EQ(comparison(first, first), "");
    EXPECT_EQ(comparison(first, second),
              "ERROR - number of rows for input grids do not match. Rows = 3 and 5\n"
              "ERROR - number of columns for input grids do not match. Columns = 4 and 6\n"
              "ERROR - x coordinates of input grids do not match. xll = 293000.5 and 293001.5\n"
              "ERROR - y coordinates of input grids do not match. yll = -12.25 and -11.75\n"
              "ERROR - cell size of input grids do not match. cell sizes = 2. and 2.5\n" +
                  kClosing);
}

TEST(CompareGridDimensions, ADifferenceOfExactlyTheTolerancePasses)
{
    const GridHeader first = headerOf(1, 1, 0, -12.25, 2.0F);
    GridHeader second = first;
    second.xll = 0.009999999776482582; // 0.01 in single precision
    EXPECT_EQ(comparison(first, second), "");
    second.xll = 0.0099999997764826;
    EXPECT_EQ(comparison(first, second),
              "ERROR - x coordinates of input grids do not match. xll = 0. and 0.0099999998\n" + kClosing);
}

} // namespace
} // namespace gridforge::test
