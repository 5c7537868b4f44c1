#include "sampling/lp_cells.h"

#include "plane/across_line.h"
#include "support/lattice.h"
#include "support/odd_cells.h"
#include "support/searched_cells.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace gridforge::test {
namespace {

// The plain loop over all samples.
sampling::FoundSample plainSearch(const AcrossLine& line, const GridHeader& h, const Grid& cells,
                                  const SampleRange& range, bool lowest)
{
    sampling::FoundSample found{lowest ? 99999.0F : -99999.0F, 0, 0};
    for (std::int32_t k = range.first; k <= range.last; ++k) {
        const double x = line.x + (h.cellsize8 * k) * line.ux;
        const double y = line.y + (h.cellsize8 * k) * line.uy;
        const double column = std::round((x - h.xll) / h.cellsize8);
        const double row = std::round((y - h.yll) / h.cellsize8);
        if (!(column >= 1 && column <= h.ncols && row >= 1 && row <= h.nrows)) {
            continue;
        }
        const float value = cells(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column));
        if (value == h.null || !(lowest ? value < found.value : value > found.value)) {
            continue;
        }
        found = lowest ? sampling::FoundSample{value, h.xll + column * h.cellsize8 - 0.5 * h.cellsize8,
                                               h.yll + row * h.cellsize8 - 0.5 * h.cellsize8}
                       : sampling::FoundSample{value, x, y};
    }
    return found;
}

void expectSame(const sampling::FoundSample& found, const sampling::FoundSample& wanted)
{
    EXPECT_EQ(bitsOfValue(found.value), bitsOfValue(wanted.value)) << found.value << " in place of " << wanted.value;
    EXPECT_EQ(found.x, wanted.x);
    EXPECT_EQ(found.y, wanted.y);
}

TEST(Samples, FindWhatThePlainLoopsFind)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0, 1);
    int found = 0;
    for (int round = 0; round < 3000; ++round) {
        const auto size = [&] { return 1 + static_cast<std::int32_t>(unit(random) * 60); };
        const float cellsize = std::array{1.0F, 0.99993681F, 2.5F}[random() % 3];
        GridHeader h = headerOf(size(), size(), 499403.841857712, 1173739.2532704433, cellsize);
        Grid cells;
        ASSERT_TRUE(cells.allocate(h.nrows, h.ncols));
        std::ranges::generate(cells.cells(), [&] {
            return unit(random) < 0.3 ? h.null : static_cast<float>(std::floor(unit(random) * 40));
        });
        const double x = h.xll + (unit(random) * 3 - 1) * h.ncols * h.cellsize8;
        const double y = h.yll + (unit(random) * 3 - 1) * h.nrows * h.cellsize8;
        const float angle = random() % 2 == 0 ? 90.0F * static_cast<float>(random() % 5) - 90.0F
                                              : static_cast<float>(unit(random) * 360 - 90);
        const AcrossLine line = acrossLine(h, x, y, angle);
        const auto width = static_cast<std::int32_t>(unit(random) * 150);
        for (const SampleRange range : {SampleRange{-width, width}, SampleRange{0, width}, SampleRange{-width, 0}}) {
            const sampling::FoundSample lowest = plainSearch(line, h, cells, range, true);
            found += lowest.value < 99999.0F ? 1 : 0;
            expectSame(sampling::lowestSample(line, h, cells, range), lowest);
            expectSame(sampling::highestSample(line, h, cells, range), plainSearch(line, h, cells, range, false));
        }
        ASSERT_FALSE(testing::Test::HasFailure()) << "round " << round;
    }
    EXPECT_GT(found, 1000);
}

TEST(Samples, OfOddCellsAreThoseOfThePlainLoops)
{
    std::mt19937 random(8);
    int found = 0;
    for (const float null : kOddNulls) {
        for (std::uint32_t seed = 1; seed <= 6; ++seed) {
            SearchedGrid made;
            makeOdd(made, 30, 40, null, seed);
            const GridHeader& h = made.header;
            for (int vertex = 0; vertex < 200; ++vertex) {
                const double x = placeOn(h.xll, h.cellsize8, h.ncols, random);
                const double y = placeOn(h.yll, h.cellsize8, h.nrows, random);
                const AcrossLine line = acrossLine(h, x, y, static_cast<float>(random() % 360));
                const auto width = static_cast<std::int32_t>(random() % 6);
                for (const SampleRange range : {SampleRange{-width, width}, SampleRange{0, width}}) {
                    const sampling::FoundSample lowest = plainSearch(line, h, made.cells, range, true);
                    const sampling::FoundSample highest = plainSearch(line, h, made.cells, range, false);
                    expectSame(sampling::lowestSample(line, h, made.cells, range), lowest);
                    expectSame(sampling::highestSample(line, h, made.cells, range), highest);
                    found += lowest.x != 0 && highest.x != 0 ? 1 : 0;
                }
                ASSERT_FALSE(testing::Test::HasFailure()) << "null " << null << ", grid " << seed << ", " << vertex;
            }
        }
    }
    EXPECT_GT(found, 1000);
}

TEST(Samples, AVastSearchDistanceCostsNothing)
{
    const GridHeader h = headerOf(3, 3, 0, 0, 1.0F);
    Grid cells;
    ASSERT_TRUE(cells.allocate(3, 3));
    cells(2, 2) = -5;
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(sampling::lowestSample(acrossLine(h, 2, 2, 33.0F), h, cells, {-kMost, kMost}).value, -5);
    }
    EXPECT_EQ(sampling::lowestSample(acrossLine(h, 50, 50, 0.0F), h, cells, {-kMost, kMost}).value, 99999.0F);
    EXPECT_EQ(sampling::lowestSample(acrossLine(h, 2, 2, 0.0F), h, cells, {1, -1}).value, 99999.0F);
}

TEST(Samples, APlaceThatIsNoNumberIsOffTheGrid)
{
    const GridHeader h = headerOf(3, 3, 0, 0, 1.0F);
    Grid cells;
    ASSERT_TRUE(cells.allocate(3, 3));
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(sampling::lowestSample(acrossLine(h, none, 2, 33.0F), h, cells, {-9, 9}).value, 99999.0F);
    EXPECT_EQ(sampling::lowestSample(acrossLine(h, infinite, 2, 33.0F), h, cells, {-9, 9}).value, 99999.0F);
    EXPECT_EQ(
        sampling::highestSample(acrossLine(h, 2, 2, std::numeric_limits<float>::quiet_NaN()), h, cells, {-9, 9}).value,
        -99999.0F);
}

} // namespace
} // namespace gridforge::test
