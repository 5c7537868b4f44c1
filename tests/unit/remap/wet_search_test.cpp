#include "remap/wet_search.h"

#include "support/odd_cells.h"
#include "unit/remap/remap_grids.h"

#include <cmath>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <vector>

namespace gridforge {
namespace {

std::optional<float> search(std::int32_t points, std::int32_t row, std::int32_t column, const remap::CellFlags& wet,
                            const Grid& levels)
{
    remap::WetIndex index;
    EXPECT_TRUE(remap::indexWetCells(wet, index));
    remap::ListedCells listed;
    return remap::idwPoint(points, row, column, index, levels, listed, remap::kIdwExponent);
}

// A lattice of dry cells, to be made wet one by one.
struct Lattice {
    explicit Lattice(std::int32_t size)
        : wet(test::sameCells<std::uint8_t>(size, size, 0)), levels(test::sameCells<float>(size, size, 0))
    {
    }
    void setWet(std::int32_t row, std::int32_t column, float level)
    {
        wet(row, column) = 1;
        levels(row, column) = level;
    }
    std::optional<float> from(std::int32_t points, std::int32_t row, std::int32_t column) const
    {
        return search(points, row, column, wet, levels);
    }

    remap::CellFlags wet;
    Grid levels;
};

// Weight by inverse square of the distance.
float weightAt(float distance)
{
    return 1.0F / (distance * distance);
}

TEST(IdwPoint, TheNearestOfTheFirstWindowWins)
{
    Lattice lattice(3);
    lattice.setWet(3, 1, 5);
    lattice.setWet(3, 3, 6);
    lattice.setWet(1, 2, 7);
    EXPECT_EQ(lattice.from(1, 2, 2), 7);
}

TEST(IdwPoint, OfCellsAtOneDistanceTheEarliestListedIsTaken)
{
    // The window is listed from the south row and from the west column.
    Lattice lattice(3);
    lattice.setWet(1, 2, 1);
    lattice.setWet(2, 1, 2);
    lattice.setWet(2, 3, 3);
    lattice.setWet(3, 2, 4);
    EXPECT_EQ(lattice.from(1, 2, 2), 1);
    EXPECT_EQ(lattice.from(2, 2, 2), 1.5F);
    EXPECT_EQ(lattice.from(3, 2, 2), 2);
}

TEST(IdwPoint, CornersOfARingAreListedTwice)
{
    // The first ring around the window of rows 4 to 6 and columns 3 to 5 has its south side in row 3 and its west side
    // in column 2: one wet cell is two points.
    Lattice lattice(7);
    lattice.setWet(3, 2, 9);
    EXPECT_EQ(lattice.from(2, 5, 4), 9);
}

TEST(IdwPoint, ACornerThatIsListedTwiceWeighsTwice)
{
    Lattice lattice(9);
    lattice.setWet(3, 3, 10); // a corner of the first ring around (5,5)
    lattice.setWet(5, 3, 4);  // on its west side
    const float corner = weightAt(std::sqrt(8.0F));
    const float side = weightAt(2);
    EXPECT_EQ(lattice.from(3, 5, 5), ((side * 4 + corner * 10) + corner * 10) / ((side + corner) + corner));
}

TEST(IdwPoint, TheOutermostRowsAreReachedByTheFirstWindowOnly)
{
    Lattice lattice(7);
    lattice.setWet(1, 4, 3);
    EXPECT_EQ(lattice.from(1, 2, 4), 3);            // in the window, which has rows 1 to 3
    EXPECT_EQ(lattice.from(1, 4, 4), std::nullopt); // row 1 is never the side of a ring
    lattice.setWet(2, 4, 5);
    EXPECT_EQ(lattice.from(1, 4, 4), 5); // row 2 is
}

TEST(IdwPoint, TheEndOfASideReachesTheOutermostRow)
{
    Lattice lattice(9);
    lattice.setWet(1, 3, 8);
    EXPECT_EQ(lattice.from(1, 3, 5), 8);            // the west side of the first ring is column 3, from row 1
    EXPECT_EQ(lattice.from(1, 3, 4), std::nullopt); // column 3 lies in the window, which has rows 2 to 4
}

TEST(IdwPoint, TooFewWetCellsAreNeverEnough)
{
    Lattice lattice(3);
    lattice.setWet(3, 1, 5);
    lattice.setWet(3, 3, 6);
    EXPECT_EQ(lattice.from(3, 2, 2), std::nullopt);
    EXPECT_EQ(Lattice(1).from(1, 1, 1), std::nullopt);
    EXPECT_EQ(Lattice(30).from(12, 15, 15), std::nullopt);
}

TEST(IdwPoint, IsThatOfTheScanByRings)
{
    std::mt19937 random(12);
    int endless = 0;
    for (int trial = 0; trial < 240; ++trial) {
        const int nrows = test::randomBetween(random, 1, 22);
        const int ncols = test::randomBetween(random, 1, 22);
        const std::vector<double> shares = {0.01, 0.05, 0.2, 0.6};
        const test::plain::Flags wet =
            test::randomFlags(random, nrows, ncols, shares[static_cast<std::size_t>(trial % 4)]);
        const test::plain::Reals levels = test::randomReals(random, nrows, ncols, -5, 60);
        const remap::CellFlags flags = test::cellsOf(wet);
        const Grid grid = test::cellsOf(levels);
        remap::WetIndex index;
        ASSERT_TRUE(remap::indexWetCells(flags, index));
        remap::ListedCells listed;
        const int points = std::vector<int>{1, 2, 3, 4, 5, 9, 12, 20, 50}[static_cast<std::size_t>(trial % 9)];
        for (int r = 1; r <= nrows; ++r) {
            for (int c = 1; c <= ncols; ++c) {
                if (wet(r, c) == 1) {
                    continue;
                }
                const auto expected = test::plain::idwPoint(points, r, c, wet, levels, 2.0F);
                endless += expected ? 0 : 1;
                ASSERT_EQ(remap::idwPoint(points, r, c, index, grid, listed, 2.0F), expected)
                    << "trial " << trial << ", " << points << " points, cell " << r << ", " << c;
            }
        }
    }
    EXPECT_GT(endless, 100); // the trials cover both ends
}

TEST(IdwPoint, PastTheDistanceOfPickedCellsTheFirstIsPickedAgain)
{
    // One row so long that cells lie farther than the 99999 that a picked cell is set to.
    test::plain::Flags wet(1, 100300);
    test::plain::Reals levels(1, 100300);
    for (const int c : {100000, 100001, 100002, 100003}) {
        wet(1, c) = 1;
        levels(1, c) = static_cast<float>(c - 99999);
    }
    const remap::CellFlags flags = test::cellsOf(wet);
    const Grid grid = test::cellsOf(levels);
    remap::WetIndex index;
    ASSERT_TRUE(remap::indexWetCells(flags, index));
    remap::ListedCells listed;
    for (const int column : {1, 2, 3, 4, 5}) {
        for (const int points : {1, 2, 3, 4}) {
            EXPECT_EQ(remap::idwPoint(points, 1, column, index, grid, listed, 2.0F),
                      test::plain::idwPoint(points, 1, column, wet, levels, 2.0F))
                << "from " << column << " with " << points;
        }
    }
}

TEST(IdwPoint, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    Lattice lattice(3);
    lattice.setWet(3, 1, test::kInfinity);
    lattice.setWet(3, 3, -test::kInfinity);
    EXPECT_TRUE(test::allQuietNaN(std::vector{lattice.from(2, 2, 2).value()}));
}

} // namespace
} // namespace gridforge
