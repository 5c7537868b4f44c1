#include "remap/idw_cells.h"

#include "support/odd_cells.h"
#include "unit/remap/remap_grids.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace gridforge {
namespace {

constexpr float kNull = -9999.0F;

float sample(double x, double y, const Grid& levels)
{
    return remap::sampleCoarseLevel(x, y, {0, 2, levels.ncols()}, {0, 2, levels.nrows()}, levels, kNull);
}

TEST(SampleCoarseLevel, IsTheLevelAtACoarseCentre)
{
    // The triangles reach a ten-thousandth of a cell past the quad, so its corner is not quite theirs.
    const Grid levels = test::gridOf({{30, 40}, {10, 20}});
    EXPECT_NEAR(sample(1, 1, levels), 10, 0.01);
    EXPECT_NEAR(sample(3, 3, levels), 40, 0.01);
}

TEST(SampleCoarseLevel, AFlatSurfaceIsFlatToItsEdgeAndNullPastIt)
{
    const Grid levels = test::gridOf({{5, 5, 5}, {5, 5, 5}});
    for (const double x : {0.0, 0.5, 1.0, 2.9, 5.5, 5.999}) {
        for (const double y : {0.0, 0.9, 1.5, 3.5, 3.999}) {
            EXPECT_EQ(sample(x, y, levels), 5) << x << ", " << y;
        }
    }
    EXPECT_EQ(sample(7.1, 1, levels), kNull);
    EXPECT_EQ(sample(1, 5.1, levels), kNull);
    EXPECT_EQ(sample(-2.1, 1, levels), kNull);
    EXPECT_EQ(sample(1, -2.1, levels), kNull);
    EXPECT_EQ(sample(1.0e300, 1, levels), kNull);
}

TEST(SampleCoarseLevel, APointLessThanACellWestOfTheLatticeCountsAsInItsFirstCell)
{
    EXPECT_EQ(sample(-1.9, 1, test::gridOf({{5, 5}, {5, 5}})), 5); // truncation goes towards zero
}

TEST(SampleCoarseLevel, IsNullInANullCell)
{
    const Grid levels = test::gridOf({{5, 5}, {kNull, 5}});
    EXPECT_EQ(sample(1.9, 1.9, levels), kNull);
    EXPECT_EQ(sample(2.1, 1.9, levels), 5);
    // What lies within a thousandth of null is null.
    EXPECT_EQ(sample(1, 1, test::gridOf({{5, 5}, {kNull + 0.0009765625F, 5}})), kNull);
}

TEST(SampleCoarseLevel, ANullEndOfTheEdgeTakesTheOtherOne)
{
    // South triangle: the edge is 6 all along, the centre the mean of the first and the third corner, (6 + 10) / 2.
    const Grid levels = test::gridOf({{kNull, 10}, {6, kNull}});
    EXPECT_NEAR(sample(1.5, 1.25, levels), 6.5, 0.001); // a quarter of the way up to the apex
}

TEST(SampleCoarseLevel, IsThatOfTheTableOfCorners)
{
    std::mt19937 random(14);
    for (int trial = 0; trial < 300; ++trial) {
        test::plain::Reals levels =
            test::randomReals(random, test::randomBetween(random, 1, 4), test::randomBetween(random, 1, 4), 10, 12);
        for (float& level : levels.values) {
            level = test::randomBetween(random, 1, 3) == 1 ? kNull : level;
        }
        const Grid grid = test::cellsOf(levels);
        const double corner = trial % 2 == 0 ? 0.0 : 293000.5;
        const test::plain::Lattice lattice{corner, 2 * corner, trial % 3 == 0 ? 5.0 : static_cast<double>(0.7F)};
        const remap::Axis columns{lattice.xll, lattice.size, grid.ncols()};
        const remap::Axis rows{lattice.yll, lattice.size, grid.nrows()};
        for (int i = 0; i < 400; ++i) {
            // Every other one on a centre, an edge or a diagonal.
            const double steps = i % 2 == 0 ? 4 : 1000;
            const auto cells = [&] { return std::round(test::randomReal(random, -2, 6) * steps) / steps; };
            const double x = lattice.xll + cells() * lattice.size;
            const double y = lattice.yll + cells() * lattice.size;
            ASSERT_EQ(remap::sampleCoarseLevel(x, y, columns, rows, grid, kNull),
                      test::plain::sample(x, y, lattice, levels, kNull))
                << x << ", " << y << ", trial " << trial;
        }
    }
}

TEST(InterpolateIdwRow, MarksACellWetOverAWetCoarseCellWhateverItsLevel)
{
    // Coarse cells of 2, the first wet, the second extended. Ground of 9 stands above the level.
    const Grid model = test::gridOf({{5, kNull}});
    const Grid extended = test::gridOf({{5, 5}});
    const remap::CoarseLevels coarse{{0, 2, 2}, {0, 2, 1}, model, extended, kNull, 0};
    const remap::IdwPlaces places = remap::idwPlaces(coarse, {0, 1, 4}, {0, 1, 2});
    std::vector<float> levels(4);
    std::vector<remap::CellState> states(4, remap::CellState::untouched);
    remap::interpolateIdwRow(coarse, places, 1, std::vector<float>{9, 1, 1, 9}, levels, states);
    EXPECT_EQ(levels, (std::vector<float>{kNull, 5, 5, kNull}));
    EXPECT_EQ(states, (std::vector<remap::CellState>{remap::CellState::wet, remap::CellState::wet,
                                                     remap::CellState::untouched, remap::CellState::untouched}));
}

TEST(DepthsOfWetCells, NeedAWetCellAndALevelNotBelowTheGround)
{
    const std::vector<remap::CellState> states = {remap::CellState::wet, remap::CellState::wet, remap::CellState::wet,
                                                  remap::CellState::untouched, remap::CellState::dry};
    std::vector<float> ground = {1, 3, 4, 1, 1};
    remap::depthsOfWetCells(states, std::vector<float>{3, 3, 3, 3, 3}, kNull, ground);
    EXPECT_EQ(ground, (std::vector<float>{2, 0, kNull, kNull, kNull}));

    std::vector<float> levels = {3, 3, 3, 3, 3};
    remap::dropDryLevels(states, kNull, levels);
    EXPECT_EQ(levels, (std::vector<float>{3, 3, 3, kNull, kNull}));
}

TEST(SampleCoarseLevel, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    const float n = test::kOddNaN;
    EXPECT_TRUE(test::allQuietNaN(std::vector{sample(1.5, 1.25, test::gridOf({{n, n}, {n, n}}))}));
    const float h = test::kInfinity;
    EXPECT_TRUE(test::allQuietNaN(std::vector{sample(1.5, 1.25, test::gridOf({{-h, -h}, {h, h}}))}));
}

TEST(DepthsOfWetCells, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    const std::vector<remap::CellState> states(test::kVectorsAndRest, remap::CellState::wet);
    std::vector<float> ground(states.size(), test::kInfinity);
    remap::depthsOfWetCells(states, std::vector<float>(states.size(), test::kInfinity), kNull, ground);
    EXPECT_TRUE(test::allQuietNaN(ground));
}

} // namespace
} // namespace gridforge
