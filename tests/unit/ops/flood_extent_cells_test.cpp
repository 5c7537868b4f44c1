#include "ops/flood_extent_cells.h"

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
    ops::markWet(cells, kNullA, output);
    EXPECT_THAT(output, ElementsAre(kNullA, 1.0F, 1.0F, 1.0F, kNullA, kNullA, 1.0F));
}

TEST(MarkWet, AgreesWithThePlainRuleOnRandomCells)
{
    const std::vector<float> cells = oddCells(1003, kNullA, 61);
    std::vector<float> plain;
    for (const float cell : cells) {
        const bool dry = cell == kNullA || (cell > -0.0001F && cell < 0.0001F); // a cell that is no number is wet
        plain.push_back(dry ? kNullA : 1.0F);
    }
    std::vector<float> output(cells.size());
    ops::markWet(cells, kNullA, output);
    EXPECT_EQ(bitsOf(output), bitsOf(plain));
}

TEST(MarkWet, TheLimitIsASingle)
{
    // The double 0.0001 lies below its single, so a cell between the two would be wet by the double.
    const float below = std::nextafter(0.0001F, 0.0F);
    std::vector<float> output(1);
    ops::markWet(std::vector<float>{below}, kNullA, output);
    EXPECT_THAT(output, ElementsAre(kNullA));
}

} // namespace
} // namespace gridforge::test
