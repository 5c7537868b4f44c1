#include "rainfall/step_cells.h"

#include <bit>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNull = -999.0F;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(RainByHyetograph, RainsWhereTheNumberIsAbove0)
{
    std::vector<float> step(4, 7.0F);
    std::vector<float> total{1, 2, 3, 4};
    rainfall::rainByHyetograph(std::vector<float>{0, 10, 20}, std::vector<std::int32_t>{2, 0, -999, 1},
                               std::vector<float>{0.5F, 5, 5, 2}, kNull, step, total);
    EXPECT_THAT(step, ElementsAre(10, kNull, kNull, 20));
    EXPECT_THAT(total, ElementsAre(11, 2, 3, 24));
}

TEST(RainByHyetograph, LooksAtNoDepthOfOthersWhereItDoesNotRain)
{
    std::vector<float> step(2, 7.0F);
    std::vector<float> total{1, 2};
    rainfall::rainByHyetograph(std::vector<float>{0}, std::vector<std::int32_t>{0, -999}, std::vector<float>{0.5F, 5},
                               kNull, step, total);
    EXPECT_THAT(step, ElementsAre(kNull, kNull));
    EXPECT_THAT(total, ElementsAre(1, 2));
}

TEST(RainByTriangle, GoesAlongTheEdgeAndThenFromTheThirdCorner)
{
    std::vector<float> step(4, 7.0F);
    std::vector<float> total{1, 2, 3, 4};
    const std::vector<std::array<float, 3>> corners{{0, 8, 100}, {2, 2, 6}};
    rainfall::rainByTriangle(
        corners,
        {std::vector<std::int32_t>{1, 0, 2, -1}, std::vector<float>{0.25F, 1, 1, 1}, std::vector<float>{0.5F, 1, 0, 1}},
        kNull, step, total);
    EXPECT_THAT(step, ElementsAre(51, kNull, 6, kNull)); // 100 + (2 - 100) * 0.5, and the third corner itself
    EXPECT_THAT(total, ElementsAre(52, 2, 9, 4));
}

TEST(AddWeighted, AddsPointByPoint)
{
    std::vector<double> sums{100, 0};
    rainfall::addWeighted(std::vector<float>{2, 3}, std::vector<float>{1, 10, 5, 50}, sums);
    EXPECT_THAT(sums, ElementsAre(100 + 2 * 1 + 3 * 5, 2 * 10 + 3 * 50));
}

TEST(SumListed, TakesTheFilledPlacesOfEachList)
{
    std::vector<double> sums{99, 99, 99};
    const std::vector<std::int32_t> counts{2, 0, 1};
    const std::vector<std::int32_t> points{1, 2, 2, 2, 2, 1};
    const std::vector<float> weights{1, 10, 7, 7, 0.5F, 7};
    rainfall::sumListed(std::vector<float>{0, 3, 4}, {2, counts, points, weights}, sums);
    EXPECT_THAT(sums, ElementsAre(3 * 1 + 4 * 10, 0, 4 * 0.5));
}

TEST(RainByWeights, WithoutWeightsIsNotANumber)
{
    std::vector<float> step(3, 7.0F);
    std::vector<float> total{1, 2, kNan};
    rainfall::rainByWeights(std::vector<double>{6, 0, 1}, std::vector<double>{4, 0, 1}, step, total);
    EXPECT_EQ(step[0], 1.5F);
    EXPECT_EQ(total[0], 2.5F);
    for (const float none : {step[1], total[1], total[2]}) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(none), 0x7fc00000U);
    }
}

} // namespace
} // namespace gridforge::test
