#include "sampling/na_cells.h"

#include "plane/geometry.h"
#include "support/sampled_region.h"
#include "support/searched_cells.h"

#include <algorithm>
#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <utility>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::FloatEq;

// --- The ladder ------------------------------------------------------------------------------------------------------

TEST(HeightLadder, StartsAMillimetreUpAndGoesOnByTenths)
{
    // floor(1.002 x 10) = 10, and one more: 11 tenths.
    EXPECT_THAT(sampling::heightLadder(1.0F, 1.25F),
                ElementsAre(FloatEq(1.001F), FloatEq(1.1F), FloatEq(1.2F), FloatEq(1.3F)));
    // A maximum below the second height still gets a third: only steps are compared with it.
    EXPECT_THAT(sampling::heightLadder(1.0F, 1.05F), ElementsAre(FloatEq(1.001F), FloatEq(1.1F), FloatEq(1.2F)));
    // 1.0985 + 0.002 passes the tenth: floor(11.005) + 1 = 12.
    EXPECT_THAT(sampling::heightLadder(1.0985F, 1.11F), ElementsAre(FloatEq(1.0995F), FloatEq(1.2F), FloatEq(1.3F)));
    // floor(-50.48) + 1 = -50.
    EXPECT_THAT(sampling::heightLadder(-5.05F, -4.85F),
                ElementsAre(FloatEq(-5.049F), FloatEq(-5.0F), FloatEq(-4.9F), FloatEq(-4.8F)));
}

TEST(HeightLadder, IsMadeInSinglePrecisionStepByStep)
{
    const std::vector<float> heights = sampling::heightLadder(1.0F, 2.85F);
    float height = 11.0F / 10.0F;
    for (std::size_t i = 1; i < heights.size(); ++i) {
        ASSERT_EQ(heights[i], height) << i;
        height += 0.1F;
    }
    EXPECT_EQ(heights.size(), 20U); // 1.1 and 18 steps to 2.9
}

// The heights from the second on, rounded to millimetres.
std::vector<int> millimetres(const std::vector<float>& heights)
{
    std::vector<int> rounded;
    std::transform(heights.begin() + 1, heights.end(), std::back_inserter(rounded),
                   [](float height) { return static_cast<int>(std::lround(height * 1000)); });
    return rounded;
}

TEST(HeightLadder, TheFirstStageEndsAtAWholeHeightPastStepTen)
{
    // From 1.9 the 11th step is 3.0: quarters follow.
    auto heights = millimetres(sampling::heightLadder(1.85F, 3.3F));
    EXPECT_EQ(heights.front(), 1900);
    ASSERT_EQ(heights.size(), 14U);
    EXPECT_THAT(std::vector<int>(heights.end() - 4, heights.end()), ElementsAre(2900, 3000, 3250, 3500));
    // From 2.0 the 10th step is 3.0: tenths go on, to 4.0 by the 20th step.
    heights = millimetres(sampling::heightLadder(1.95F, 4.3F));
    EXPECT_THAT(std::vector<int>(heights.end() - 4, heights.end()), ElementsAre(3900, 4000, 4250, 4500));
    EXPECT_EQ(heights[11], 3100);
    // From 2.1 the 9th step is 3.0, and the 19th, 4.0, ends the stage one step early.
    heights = millimetres(sampling::heightLadder(2.0F, 4.3F));
    EXPECT_EQ(heights[10], 3100);
    EXPECT_THAT(std::vector<int>(heights.end() - 3, heights.end()), ElementsAre(4000, 4250, 4500));
    EXPECT_EQ(heights.size(), 1U + 19 + 2);
}

TEST(HeightLadder, AWholeHeightAboveTheMaximumEndsTheLadder)
{
    const auto heights = millimetres(sampling::heightLadder(1.85F, 2.95F));
    EXPECT_EQ(heights.back(), 3000);
}

TEST(HeightLadder, GetsCoarserAndEndsAtAHundredHeights)
{
    const auto heights = millimetres(sampling::heightLadder(-0.05F, 5000.0F));
    ASSERT_EQ(heights.size(), 99U); // and the first
    EXPECT_EQ(heights[0], 0);
    EXPECT_EQ(heights[20], 2000);
    EXPECT_EQ(heights[21], 2250);
    EXPECT_EQ(heights[40], 7000);
    EXPECT_EQ(heights[41], 7500);
    EXPECT_EQ(heights[60], 17000);
    EXPECT_EQ(heights[61], 18000);
    EXPECT_EQ(heights[80], 37000);
    EXPECT_EQ(heights[81], 47000);
    EXPECT_EQ(heights[90], 137000);
    EXPECT_EQ(heights[91], 237000);
    EXPECT_EQ(heights[98], 937000);
}

TEST(HeightLadder, FarValuesStayInRange)
{
    EXPECT_LE(sampling::heightLadder(-1e30F, 1e30F).size(), 100U);
    EXPECT_LE(sampling::heightLadder(1e10F, 2e10F).size(), 100U);
}

// --- Counting --------------------------------------------------------------------------------------------------------

TEST(CountByHeight, EachValueCountsAtTheFirstHeightThatItDoesNotExceed)
{
    const sampling::HeightCounts counts = sampling::countByHeight(
        std::vector<float>{0.5F, 1.0F, 1.5F, 2.0F, 2.5F, 4.0F, 4.5F}, std::vector<float>{1, 2, 3, 4});
    EXPECT_THAT(counts.upTo, ElementsAre(2, 4, 5, 6));
    EXPECT_EQ(counts.above, 1);
}

TEST(CountByHeight, TheFirstHeightHasACellAtLeast)
{
    const sampling::HeightCounts counts =
        sampling::countByHeight(std::vector<float>{1.5F, 1.7F}, std::vector<float>{1, 2, 3});
    EXPECT_THAT(counts.upTo, ElementsAre(1, 3, 3));
    EXPECT_THAT(sampling::countByHeight({}, std::vector<float>{1, 2}).upTo, ElementsAre(1, 1));
}

TEST(CountByHeight, AgreesWithAPlainLoopForHeightsThatFallToo)
{
    std::mt19937 random(3);
    const auto upTo = [&](int n) { return static_cast<float>(random() % static_cast<unsigned>(n)); };
    for (int round = 0; round < 200; ++round) {
        std::vector<float> heights(1 + static_cast<std::size_t>(upTo(20)));
        for (std::size_t i = 0; i < heights.size(); ++i) {
            heights[i] = round % 2 == 0 ? static_cast<float>(i) : upTo(20);
        }
        std::vector<float> values(static_cast<std::size_t>(upTo(60)));
        for (float& value : values) {
            value = upTo(44) * 0.5F - 1;
        }
        if (!values.empty() && round % 5 == 0) {
            values[0] = std::numeric_limits<float>::quiet_NaN();
        }
        std::vector<std::int64_t> plain(heights.size(), 0);
        std::int64_t above = 0;
        for (const float value : values) {
            bool counted = false;
            for (std::size_t i = 0; i < heights.size() && !counted; ++i) {
                counted = value <= heights[i];
                plain[i] += counted ? 1 : 0;
            }
            above += counted ? 0 : 1;
        }
        plain[0] = plain[0] == 0 ? 1 : plain[0];
        for (std::size_t i = 1; i < plain.size(); ++i) {
            plain[i] += plain[i - 1];
        }
        const sampling::HeightCounts counts = sampling::countByHeight(values, heights);
        ASSERT_EQ(counts.upTo, plain) << round;
        ASSERT_EQ(counts.above, above) << round;
    }
}

TEST(CountByHeight, OddValuesAgreeWithAPlainLoop)
{
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        const std::vector<float> values = oddCells(300, -9999.0F, seed);
        for (const auto& [minimum, maximum] :
             {std::pair(-3.0F, 5.0F), std::pair(-kInfinity, kInfinity), std::pair(-3.4e38F, 3.4e38F),
              std::pair(99999.0F, kInfinity), std::pair(-1.0e-40F, 1.0e-40F)}) {
            const std::vector<float> heights = sampling::heightLadder(minimum, maximum);
            std::vector<std::int64_t> plain(heights.size(), 0);
            std::int64_t above = 0;
            for (const float value : values) {
                const auto first = std::ranges::find_if(heights, [&](float height) { return value <= height; });
                if (first == heights.end()) {
                    ++above;
                } else {
                    ++plain[static_cast<std::size_t>(first - heights.begin())];
                }
            }
            EXPECT_GT(above, 0) << "those that are no number at least";
            plain[0] = std::max(plain[0], std::int64_t{1});
            for (std::size_t i = 1; i < plain.size(); ++i) {
                plain[i] += plain[i - 1];
            }
            const sampling::HeightCounts counts = sampling::countByHeight(values, heights);
            ASSERT_EQ(counts.upTo, plain) << seed << " from " << minimum;
            ASSERT_EQ(counts.above, above) << seed << " from " << minimum;
        }
    }
}

// --- Collecting ------------------------------------------------------------------------------------------------------

TEST(CollectInside, TakesTheCellsOfThePlainLoopInItsOrder)
{
    std::mt19937 random(9);
    const auto upTo = [&](int n) { return static_cast<double>(random() % static_cast<unsigned>(n)); };
    std::size_t taken = 0;
    for (int round = 0; round < 100; ++round) {
        SearchedGrid made;
        makeCounted(made, 30, 40);
        for (int i = 0; i < 200; ++i) {
            made.cells(1 + static_cast<std::int32_t>(upTo(30)), 1 + static_cast<std::int32_t>(upTo(40))) = -9999.0F;
        }
        std::vector<double> x;
        std::vector<double> y;
        for (int k = 0; k < 3 + round % 9; ++k) {
            x.push_back(1 + upTo(75) * 0.5);
            y.push_back(1 + upTo(55) * 0.5);
        }
        const SampledRegion region = regionOf(x, y);
        const CellWindow window = regionWindow(region, made.header);
        ASSERT_TRUE(isWithinGrid(window, made.header));
        std::vector<float> plain;
        const auto np = static_cast<std::int32_t>(region.x.size());
        const std::array<std::int32_t, 1> ir = {np - 1};
        for (std::int32_t row = window.firstRow; row <= window.lastRow; ++row) {
            for (std::int32_t column = window.firstColumn; column <= window.lastColumn; ++column) {
                if (INSIDE_POLYGON_8(column, row, region.x, region.y, np, region.box.xmin, ir, 1) &&
                    made.cells(row, column) != -9999.0F) {
                    plain.push_back(made.cells(row, column));
                }
            }
        }
        std::vector<float> values;
        ASSERT_TRUE(sampling::collectInside(region, made.header, made.cells, window, 1200, values));
        ASSERT_EQ(values, plain) << round;
        taken += values.size();
    }
    EXPECT_GT(taken, 5000U);
}

TEST(CollectInside, TakesOddCellsBitByBit)
{
    std::size_t taken = 0;
    for (const float null : kOddNulls) {
        for (std::uint32_t seed = 1; seed <= 6; ++seed) {
            SearchedGrid made;
            makeOdd(made, 30, 40, null, seed);
            const GridHeader& h = made.header;
            const auto x = [&](double column) { return h.xll + column * h.cellsize8; };
            const auto y = [&](double row) { return h.yll + row * h.cellsize8; };
            // A rectangle between the corners of columns 4 and 30 and rows 3 and 22.
            const SampledRegion region =
                regionOf({x(3.5), x(30.5), x(30.5), x(3.5)}, {y(2.5), y(2.5), y(22.5), y(22.5)});
            std::vector<float> plain;
            for (std::int32_t row = 3; row <= 22; ++row) {
                for (std::int32_t column = 4; column <= 30; ++column) {
                    if (made.cells(row, column) != null) {
                        plain.push_back(made.cells(row, column));
                    }
                }
            }
            std::vector<float> values;
            ASSERT_TRUE(sampling::collectInside(region, h, made.cells, regionWindow(region, h), 1200, values));
            ASSERT_EQ(bitsOf(values), bitsOf(plain)) << "null " << null << ", grid " << seed;
            taken += values.size();
        }
    }
    EXPECT_GT(taken, 5000U);
}

TEST(CollectInside, TellsWhenThereAreTooMany)
{
    SearchedGrid made;
    makeCounted(made, 9, 9);
    const SampledRegion square = regionOf({1.5, 4.5, 4.5, 1.5}, {1.5, 1.5, 4.5, 4.5}); // 9 corners
    const CellWindow window = regionWindow(square, made.header);
    std::vector<float> values;
    EXPECT_TRUE(sampling::collectInside(square, made.header, made.cells, window, 9, values));
    values.clear();
    EXPECT_FALSE(sampling::collectInside(square, made.header, made.cells, window, 8, values));
    EXPECT_LE(values.size(), 9U);
}

} // namespace
} // namespace gridforge::test
