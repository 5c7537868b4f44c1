#include "plane/grid_header.h"

#include <gtest/gtest.h>

namespace gridforge {
namespace {

TEST(GridHeader, TellsTheCentresOfCells)
{
    GridHeader header;
    header.xll = 100;
    header.yll = 10;
    header.cellsize8 = 4;
    EXPECT_EQ(header.x(1), 102);
    EXPECT_EQ(header.x(3), 110);
    EXPECT_EQ(header.y(2), 16);
}

} // namespace
} // namespace gridforge
