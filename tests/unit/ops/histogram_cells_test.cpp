#include "ops/histogram_cells.h"

#include "support/odd_cells.h"
#include "unit/ops/plain_classes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;

TEST(CountBins, CountsEachCellOnce)
{
    const std::vector<float> cells = {5, 10, 10.5F, 20, 21, kNullA, kNaN};
    std::vector<std::int64_t> counts(3);
    ops::countBins(cells, kNullA, std::vector<float>{10, 20}, counts);
    EXPECT_THAT(counts, ElementsAre(2, 2, 2));
    ops::countBins(cells, kNullA, std::vector<float>{10, 20}, counts); // adds up
    EXPECT_THAT(counts, ElementsAre(4, 4, 4));
}

std::vector<std::int64_t> plainCounts(const std::vector<float>& cells, const std::vector<float>& limits)
{
    std::vector<std::int64_t> counts(limits.size() + 1);
    for (const float cell : cells) {
        if (cell != kNullA) {
            ++counts[static_cast<std::size_t>(plainClass(cell, limits)) - 1];
        }
    }
    return counts;
}

TEST(CountBins, AgreesWithThePlainCount)
{
    const std::vector<float> cells = oddCells(20011, kNullA, 53);
    for (const std::vector<float>& limits : std::vector<std::vector<float>>{
             {0, 1}, {-3, -2, -2, 0.1F, 3}, {0, kNaN, -1, 2}, {kNaN, -kInfinity, kInfinity}}) {
        std::vector<std::int64_t> counts(limits.size() + 1);
        ops::countBins(cells, kNullA, ops::risingLimits(tableOf(limits)), counts);
        EXPECT_EQ(counts, plainCounts(cells, limits));
    }
}

TEST(CountBins, TakesAnyNumberOfLimits)
{
    const std::vector<float> cells = oddCells(20011, kNullA, 55);
    for (const std::size_t count : kCountsOfLimits) {
        const std::vector<float> limits = manyLimits(count);
        std::vector<std::int64_t> counts(count + 1);
        ops::countBins(cells, kNullA, limits, counts);
        EXPECT_EQ(counts, plainCounts(cells, limits)) << count;
    }
}

} // namespace
} // namespace gridforge::test
