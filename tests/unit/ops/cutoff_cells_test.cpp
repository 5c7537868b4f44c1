#include "ops/cutoff_cells.h"

#include "support/odd_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;
constexpr float kNullB = -1.0F;

TEST(KeepFrom, KeepsACellOfExactlyTheCutoff)
{
    const std::vector<float> cells = {0.1F, 0.0999F, 0.2F, kNullA, -5.0F};
    std::vector<float> output(5, 77.0F);
    ops::keepFrom(cells, 0.1F, kNullA, output);
    EXPECT_THAT(output, ElementsAre(0.1F, kNullA, 0.2F, kNullA, kNullA));
}

TEST(KeepFrom, TreatsTheNullAsANumber)
{
    const std::vector<float> cells = {5.0F, 100.0F};
    std::vector<float> output(2, 77.0F);
    ops::keepFrom(cells, 10.0F, 100.0F, output);
    EXPECT_THAT(output, ElementsAre(100.0F, 100.0F)); // the first failed, the second is the null and passed
}

TEST(FilterFrom, TakesTheSecondGridsActiveCells)
{
    const std::vector<float> test = {1.0F, 1.0F, 0.5F, kNullA};
    const std::vector<float> values = {40.0F, kNullB, 42.0F, 43.0F};
    std::vector<float> output(4, 77.0F);
    ops::filterFrom(test, 1.0F, values, kNullB, kNullA, output);
    EXPECT_THAT(output, ElementsAre(40.0F, kNullA, kNullA, kNullA));
}

TEST(FilterFrom, ANullTestCellPassesAtACutoffBelowIt)
{
    const std::vector<float> test = {kNullA};
    const std::vector<float> values = {40.0F};
    std::vector<float> output(1);
    ops::filterFrom(test, -10000.0F, values, kNullB, kNullA, output);
    EXPECT_THAT(output, ElementsAre(40.0F));
}

TEST(Cutoff, AgreesWithThePlainTestsOnRandomCells)
{
    for (const float cutoff : {0.0F, -0.9F, 2.0F, kNaN, -10000.0F}) {
        const std::vector<float> a = oddCells(1001, kNullA, 21);
        const std::vector<float> b = oddCells(1001, kNullB, 22);
        std::vector<float> kept;
        std::vector<float> filtered;
        for (std::size_t i = 0; i < a.size(); ++i) {
            kept.push_back(a[i] >= cutoff ? a[i] : kNullA);
            filtered.push_back(a[i] >= cutoff && b[i] != kNullB ? b[i] : kNullA);
        }
        std::vector<float> output(a.size());
        ops::keepFrom(a, cutoff, kNullA, output);
        EXPECT_EQ(bitsOf(output), bitsOf(kept));
        ops::filterFrom(a, cutoff, b, kNullB, kNullA, output);
        EXPECT_EQ(bitsOf(output), bitsOf(filtered));
    }
}

} // namespace
} // namespace gridforge::test
