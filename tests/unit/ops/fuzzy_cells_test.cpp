#include "ops/fuzzy_cells.h"

#include "support/odd_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;

TEST(CountActiveCells, GrowsFromNull)
{
    std::vector<float> counts(4, kNullA);
    ops::countActiveCells(std::vector<float>{1.0F, kNullA, 0.0F, kNullA}, kNullA, counts);
    ops::countActiveCells(std::vector<float>{1.0F, 2.0F, kNullA, kNullA}, kNullA, counts);
    EXPECT_THAT(counts, ElementsAre(2.0F, 1.0F, 1.0F, kNullA));
    ops::scaleCounts(4, kNullA, counts);
    EXPECT_THAT(counts, ElementsAre(0.5F, 0.25F, 0.25F, kNullA));
}

TEST(CountActiveCells, ACountThatReachesTheNullStartsAnew)
{
    std::vector<float> counts = {2.0F};
    for (int grid = 0; grid < 3; ++grid) {
        ops::countActiveCells(std::vector<float>{5.0F}, 2.0F, counts);
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
        ops::countActiveCells(cells, kNullA, counts);
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
    ops::scaleCounts(3, kNullA, counts);
    EXPECT_EQ(bitsOf(counts), bitsOf(plain));
}

TEST(ScaleCounts, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    std::vector<float> counts(kVectorsAndRest, kOddNaN); // as a null of that value leaves them
    ops::scaleCounts(3, kNullA, counts);
    EXPECT_TRUE(allQuietNaN(counts));
}

} // namespace
} // namespace gridforge::test
