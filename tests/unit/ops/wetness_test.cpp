#include "ops/count.h"
#include "ops/flood_extent.h"
#include "ops/fuzzy.h"

#include "support/odd_cells.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;

TEST(MarkWet, HoldsToTheMagnitude)
{
    const std::vector<float> cells = {0.00005F, -0.5F, 0.0001F, -0.0001F, 0.0F, kNullA, 2.0F};
    std::vector<float> output(7, 77.0F);
    markWet(cells, kNullA, output);
    EXPECT_THAT(output, ElementsAre(kNullA, 1.0F, 1.0F, 1.0F, kNullA, kNullA, 1.0F));
}

TEST(MarkWet, TheLimitIsASingle)
{
    // The double 0.0001 lies below its single, so a cell between the two would be wet by the double.
    const float below = std::nextafter(0.0001F, 0.0F);
    std::vector<float> output(1);
    markWet(std::vector<float>{below}, kNullA, output);
    EXPECT_THAT(output, ElementsAre(kNullA));
}

TEST(CountActive, CountsWhatIsNotNull)
{
    EXPECT_EQ(countActive(std::vector<float>{0.0F, kNullA, -1.0F, kNaN}, kNullA), 3);
    EXPECT_EQ(countActive(std::vector<float>{kNullA}, kNullA), 0);
    EXPECT_EQ(countActive({}, kNullA), 0);
}

TEST(CountAbove, ACellOfExactlyTheCutoffDoesNotCount)
{
    EXPECT_EQ(countAbove(std::vector<float>{0.1F, std::nextafter(0.1F, 1.0F), kNullA, 5.0F, kNaN}, kNullA, 0.1F), 2);
}

TEST(CountAbove, ANullAboveTheCutoffDoesNotCount)
{
    EXPECT_EQ(countAbove(std::vector<float>{100.0F, 50.0F}, 100.0F, 10.0F), 1);
    EXPECT_EQ(countAbove(std::vector<float>{kNullA, 50.0F}, kNullA, -20000.0F), 1);
}

TEST(Count, AgreesWithThePlainLoopsBeyondAStretch)
{
    const std::vector<float> cells = oddCells(200003, kNullA, 41);
    std::int64_t active = 0;
    std::int64_t above = 0;
    for (const float cell : cells) {
        if (cell != kNullA) {
            ++active;
            if (cell > 1.0F) {
                ++above;
            }
        }
    }
    EXPECT_EQ(countActive(cells, kNullA), active);
    EXPECT_EQ(countAbove(cells, kNullA, 1.0F), above);
}

TEST(CountActiveCells, GrowsFromNull)
{
    std::vector<float> counts(4, kNullA);
    countActiveCells(std::vector<float>{1.0F, kNullA, 0.0F, kNullA}, kNullA, counts);
    countActiveCells(std::vector<float>{1.0F, 2.0F, kNullA, kNullA}, kNullA, counts);
    EXPECT_THAT(counts, ElementsAre(2.0F, 1.0F, 1.0F, kNullA));
    scaleCounts(4, kNullA, counts);
    EXPECT_THAT(counts, ElementsAre(0.5F, 0.25F, 0.25F, kNullA));
}

TEST(CountActiveCells, ACountThatReachesTheNullStartsAnew)
{
    std::vector<float> counts = {2.0F};
    for (int grid = 0; grid < 3; ++grid) {
        countActiveCells(std::vector<float>{5.0F}, 2.0F, counts);
    }
    EXPECT_THAT(counts, ElementsAre(1.0F)); // 1, 2, which is the null, 1
}

TEST(Fuzzy, AgreesWithThePlainLoopsOnRandomCells)
{
    constexpr std::size_t kCells = 1001;
    std::vector<float> counts(kCells, kNullA);
    std::vector<float> plain(kCells, kNullA);
    for (std::uint32_t grid = 1; grid <= 3; ++grid) {
        const std::vector<float> cells = oddCells(kCells, kNullA, grid);
        countActiveCells(cells, kNullA, counts);
        for (std::size_t i = 0; i < kCells; ++i) {
            if (cells[i] != kNullA) {
                plain[i] = plain[i] == kNullA ? 1.0F : plain[i] + 1.0F;
            }
        }
    }
    for (float& count : plain) {
        if (count != kNullA) {
            count = count / 3.0F;
        }
    }
    scaleCounts(3, kNullA, counts);
    EXPECT_EQ(bitsOf(counts), bitsOf(plain));
}

TEST(ScaleCounts, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    std::vector<float> counts(kVectorsAndRest, kOddNaN); // as a null of that value leaves them
    scaleCounts(3, kNullA, counts);
    EXPECT_TRUE(allQuietNaN(counts));
}

} // namespace
} // namespace gridforge::test
