#include "remap/extent_flags.h"

#include "support/odd_cells.h"
#include "unit/remap/remap_grids.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace gridforge {
namespace {

using testing::ElementsAre;
using Table = test::Table<std::uint8_t>;

constexpr float kNull = -9999.0F;

TEST(FlagValues, AValueStandsMoreThanAHundredthAboveNull)
{
    const float threshold = kNull + 0.01F;
    std::vector<std::uint8_t> flags(5, 7);
    remap::flagValues(std::vector<float>{kNull, threshold, std::nextafter(threshold, 0.0F), 3, std::nanf("")}, kNull,
                      flags);
    EXPECT_THAT(flags, ElementsAre(0, 0, 1, 1, 0));
}

TEST(FlagWetAndAddFreeboard, RaisesWetCellsOnly)
{
    std::vector<float> levels = {1, kNull, 2.5F};
    std::vector<std::uint8_t> flags(3);
    remap::flagWetAndAddFreeboard(levels, kNull, 0.25F, flags);
    EXPECT_THAT(levels, ElementsAre(1.25F, kNull, 2.75F));
    EXPECT_THAT(flags, ElementsAre(1, 0, 1));
}

TEST(BufferExtent, ReachesToTheDistanceAndNotPastIt)
{
    const remap::CellFlags wet = test::flagsOf({{0, 0, 0, 0, 0}, //
                                                {0, 0, 0, 0, 0},
                                                {0, 0, 1, 0, 0},
                                                {0, 0, 0, 0, 0},
                                                {0, 0, 0, 0, 0}});
    auto extent = test::sameCells<std::uint8_t>(5, 5, 1);
    const remap::ExtentCounts counts = remap::bufferExtent(wet, 10, 20, extent);
    EXPECT_EQ(test::tableOf(extent), (Table{{0, 0, 1, 0, 0}, // two cells away; beside it are 22.4
                                            {0, 1, 1, 1, 0},
                                            {1, 1, 1, 1, 1},
                                            {0, 1, 1, 1, 0},
                                            {0, 0, 1, 0, 0}}));
    EXPECT_EQ(counts.wet, 1);
    EXPECT_EQ(counts.buffered, 12);

    remap::bufferExtent(wet, 10, std::nextafter(20.0F, 0.0F), extent);
    EXPECT_EQ(test::tableOf(extent), (Table{{0, 0, 0, 0, 0}, //
                                            {0, 1, 1, 1, 0},
                                            {0, 1, 1, 1, 0},
                                            {0, 1, 1, 1, 0},
                                            {0, 0, 0, 0, 0}}));
}

TEST(BufferExtent, WithoutAWetCellFlagsNothing)
{
    const auto wet = test::sameCells<std::uint8_t>(2, 2, 0);
    auto extent = test::sameCells<std::uint8_t>(2, 2, 1);
    const remap::ExtentCounts counts = remap::bufferExtent(wet, 1, 100, extent);
    EXPECT_EQ(test::tableOf(extent), test::tableOf(wet));
    EXPECT_EQ(counts.wet, 0);
    EXPECT_EQ(counts.buffered, 0);
}

TEST(BufferExtent, OneCellAndHugeDistancesHold)
{
    const remap::CellFlags wet = test::flagsOf({{1}});
    auto extent = test::sameCells<std::uint8_t>(1, 1, 0);
    EXPECT_EQ(remap::bufferExtent(wet, 1, std::numeric_limits<float>::infinity(), extent).wet, 1);
    const remap::CellFlags line = test::flagsOf({{1, 0, 0, 0}});
    auto reached = test::sameCells<std::uint8_t>(1, 4, 0);
    EXPECT_EQ(remap::bufferExtent(line, 1, 3.0e38F, reached).buffered, 3);
}

TEST(BufferExtent, IsThatOfAWindowForEachCell)
{
    std::mt19937 random(11);
    for (int trial = 0; trial < 400; ++trial) {
        const int nrows = test::randomBetween(random, 1, 14);
        const int ncols = test::randomBetween(random, 1, 14);
        const auto dx = static_cast<float>(test::randomReal(random, 0.1, 30));
        // Often a distance that cells lie at exactly.
        const auto squares = static_cast<float>(test::randomBetween(random, 1, 40));
        const float buffer = dx * std::sqrt(squares) * (trial % 3 == 0 ? 1.001F : 1.0F);
        const test::plain::Flags wet = test::randomFlags(random, nrows, ncols, trial % 2 == 0 ? 0.03 : 0.3);
        test::plain::Flags expected(nrows, ncols);
        const test::plain::Counts counts = test::plain::bufferExtent(wet, dx, buffer, expected);

        auto extent = test::sameCells<std::uint8_t>(nrows, ncols, 1);
        const remap::ExtentCounts found = remap::bufferExtent(test::cellsOf(wet), dx, buffer, extent);
        ASSERT_EQ(test::tableOf(extent), test::tableOf(expected)) << "trial " << trial;
        ASSERT_EQ(found.wet, counts.wet);
        ASSERT_EQ(found.buffered, counts.buffered);
    }
}

TEST(FlagWetAndAddFreeboard, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    std::vector<float> levels(test::kVectorsAndRest, test::kInfinity);
    std::vector<std::uint8_t> flags(levels.size());
    remap::flagWetAndAddFreeboard(levels, kNull, -test::kInfinity, flags);
    EXPECT_TRUE(test::allQuietNaN(levels));
}

} // namespace
} // namespace gridforge
