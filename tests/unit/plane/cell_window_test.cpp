#include "plane/cell_window.h"

#include "support/lattice.h"

#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

TEST(SearchWindow, IsCutBelowAndRoundedUpAbove)
{
    // Columns (113 - 2 - 100) / 2 = 5.5 and (113 + 2 - 100) / 2 = 7.5; rows (56 - 2 - 50) / 2 = 2 and 4.
    const CellWindow window = searchWindow(headerOf(20, 20, 100, 50, 2.0F), 113, 56, 4.0F);
    EXPECT_EQ(window.firstColumn, 5);
    EXPECT_EQ(window.lastColumn, 8);
    EXPECT_EQ(window.firstRow, 2);
    EXPECT_EQ(window.lastRow, 4);
}

TEST(SearchWindow, TouchesTheEdgeFromRowOrColumnNothing)
{
    const GridHeader h = headerOf(10, 10, 0, 0, 1.0F);
    EXPECT_TRUE(isWithinGrid(searchWindow(h, 5, 5, 8.0F), h));     // 1 to 9
    EXPECT_FALSE(isWithinGrid(searchWindow(h, 4.9, 5, 8.0F), h));  // column 0.9
    EXPECT_FALSE(isWithinGrid(searchWindow(h, 5, 4.9, 8.0F), h));  // row 0.9
    EXPECT_TRUE(isWithinGrid(searchWindow(h, 6, 6, 8.0F), h));     // to 10
    EXPECT_FALSE(isWithinGrid(searchWindow(h, 6.01, 6, 8.0F), h)); // to 11
    EXPECT_FALSE(isWithinGrid(searchWindow(h, 6, 6.01, 8.0F), h)); // to 11
    EXPECT_FALSE(isWithinGrid(searchWindow(h, -0.5, 5, 0.2F), h)); // cut towards 0
}

TEST(SearchWindow, FarAndStrangePointsLieOutside)
{
    const GridHeader h = headerOf(10, 10, 0, 0, 1.0F);
    const double huge = 1e300;
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(isWithinGrid(searchWindow(h, huge, 5, 2.0F), h));
    EXPECT_FALSE(isWithinGrid(searchWindow(h, -huge, 5, 2.0F), h));
    EXPECT_FALSE(isWithinGrid(searchWindow(h, none, 5, 2.0F), h));
    EXPECT_FALSE(isWithinGrid(searchWindow(h, 5, 5, std::numeric_limits<float>::infinity()), h));
}

TEST(CellPlaces, CornersLieHalfACellNorthEastOfCentres)
{
    const GridHeader h = headerOf(10, 10, 100, 200, 2.0F);
    EXPECT_EQ(cornerX(h, 3), 106);
    EXPECT_EQ(cornerY(h, 1), 202);
    EXPECT_EQ(centreX(h, 3), 105);
    EXPECT_EQ(centreY(h, 1), 201);
}

} // namespace
} // namespace gridforge::test
