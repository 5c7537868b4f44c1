#include "ops/max_min_cells.h"

#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace gridforge {
namespace {

using testing::ElementsAre;

constexpr float kNull = -9999.0F;

TEST(TakeMaximum, MissingCellsNeverBeatAValueAndTiesStay)
{
    std::vector<float> kept = {1, 2, kNull, 4, kNull};
    std::vector<float> sources = {1, 1, kNull, 1, kNull};
    ops::takeMaximum(std::vector<float>{2, 1, 5, 4, -1}, -1, 2, kept, sources);
    EXPECT_THAT(kept, ElementsAre(2, 2, 5, 4, kNull));
    EXPECT_THAT(sources, ElementsAre(2, 1, 2, 1, kNull));
}

TEST(TakeMinimum, TakesEmptyCellsByTheNullOfTheGridThatComes)
{
    std::vector<float> kept = {1, 2, kNull, 4, kNull};
    std::vector<float> sources = {1, 1, kNull, 1, kNull};
    ops::takeMinimum(std::vector<float>{2, 1, 5, 4, kNull}, kNull, 2, kept, sources);
    EXPECT_THAT(kept, ElementsAre(1, 1, 5, 4, kNull));
    EXPECT_THAT(sources, ElementsAre(1, 2, 2, 1, kNull));
}

TEST(TakeMaximum, CellsThatAreNoNumberNeverEnter)
{
    std::vector<float> kept = {kNull, 2};
    std::vector<float> none;
    ops::takeMaximum(std::vector<float>{std::nanf(""), std::nanf("")}, kNull, 1, kept, none);
    EXPECT_THAT(kept, ElementsAre(kNull, 2));
}

TEST(TakeMinimum, ACellThatIsNoNumberFillsAnEmptyOneAndStays)
{
    std::vector<float> kept = {kNull, 2};
    std::vector<float> sources = {kNull, 1};
    ops::takeMinimum(std::vector<float>{std::nanf(""), std::nanf("")}, kNull, 2, kept, sources);
    EXPECT_TRUE(std::isnan(kept[0]));
    EXPECT_EQ(kept[1], 2);
    ops::takeMinimum(std::vector<float>{1, 1}, kNull, 3, kept, sources);
    EXPECT_TRUE(std::isnan(kept[0]));
    EXPECT_THAT(sources, ElementsAre(2, 3));
}

// The rules in their plain form, cell by cell.
void takePlain(bool maximum, float cell, float null, float source, float& kept, float& from)
{
    if (cell == null) {
        return;
    }
    if (maximum ? cell > kept : (kept == null || cell < kept)) {
        kept = cell;
        from = source;
    }
}

TEST(MaxMinKernels, AgreeWithThePlainRulesOnRandomCells)
{
    std::mt19937 random(20201);
    using Limits = std::numeric_limits<float>;
    const std::vector<float> values = {kNull,
                                       -1,
                                       0,
                                       -0.0F,
                                       1,
                                       2,
                                       std::nanf(""),
                                       Limits::infinity(),
                                       -Limits::infinity(),
                                       Limits::max(),
                                       Limits::lowest(),
                                       Limits::min(),
                                       Limits::denorm_min(),
                                       -Limits::denorm_min(),
                                       -10000,
                                       std::nextafterf(kNull, 0)};
    for (const bool maximum : {true, false}) {
        constexpr std::size_t kCells = 1003;
        std::vector<float> kept(kCells, kNull);
        std::vector<float> keptWithout(kCells, kNull);
        std::vector<float> sources(kCells, kNull);
        std::vector<float> plain(kCells, kNull);
        std::vector<float> plainSources(kCells, kNull);
        std::vector<float> none;
        for (int grid = 1; grid <= 12; ++grid) {
            const float null = grid % 3 == 0 ? 1.0F : kNull;
            std::vector<float> cells(kCells);
            for (float& cell : cells) {
                cell = values[random() % values.size()];
            }
            const auto take = maximum ? ops::takeMaximum : ops::takeMinimum;
            take(cells, null, static_cast<float>(grid), kept, sources);
            take(cells, null, static_cast<float>(grid), keptWithout, none);
            for (std::size_t i = 0; i < kCells; ++i) {
                takePlain(maximum, cells[i], null, static_cast<float>(grid), plain[i], plainSources[i]);
            }
        }
        const auto sameBits = [](const std::vector<float>& a, const std::vector<float>& b) {
            return std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
        };
        EXPECT_TRUE(sameBits(kept, plain));
        EXPECT_TRUE(sameBits(keptWithout, plain));
        EXPECT_TRUE(sameBits(sources, plainSources));
    }
}

} // namespace
} // namespace gridforge
