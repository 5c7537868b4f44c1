#include "ops/class_table.h"
#include "ops/classify.h"
#include "ops/histogram.h"

#include "support/odd_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;

ClassTable tableOf(const std::vector<float>& limits)
{
    ClassTable table;
    for (const float limit : limits) {
        table.push_back({.limit = limit, .name = "", .red = 0, .green = 0, .blue = 0});
    }
    return table;
}

// The first limit that holds the value, as it reads in words.
std::int32_t plainClass(float value, const std::vector<float>& limits)
{
    for (std::size_t i = 0; i < limits.size(); ++i) {
        if (value <= limits[i]) {
            return static_cast<std::int32_t>(i) + 1;
        }
    }
    return static_cast<std::int32_t>(limits.size()) + 1;
}

std::vector<std::int32_t> classesOf(const std::vector<float>& cells, const std::vector<float>& limits)
{
    std::vector<std::int32_t> numbers(cells.size());
    findClasses(cells, risingLimits(tableOf(limits)), numbers);
    return numbers;
}

TEST(FindClasses, ALimitBelongsToItsClass)
{
    EXPECT_THAT(classesOf({-100, 1, 1.5F, 2, 3, 3.1F, kNaN}, {1, 2, 3}), ElementsAre(1, 1, 2, 2, 3, 4, 4));
}

TEST(FindClasses, OfEqualLimitsTheFirstIsTaken)
{
    EXPECT_THAT(classesOf({1, 2, 3}, {1, 2, 2, 3}), ElementsAre(1, 2, 4));
}

TEST(FindClasses, AgreesWithThePlainSearchForLimitsOfAnyKind)
{
    const std::vector<float> cells = oddCells(2000, kNullA, 51);
    for (const std::vector<float>& limits : std::vector<std::vector<float>>{
             {0, 1},
             {-2, -2, 0, 0.3F, 0.6F, 4},
             {kNaN, 0, 2},
             {0, kNaN, 2},
             {0, kNaN, -2, 3},
             {kNaN, kNaN},
             {kNaN, -kInfinity, kInfinity},
             {-kInfinity, 0, kInfinity},
             {3, 2, 1},
         }) {
        const std::vector<std::int32_t> numbers = classesOf(cells, limits);
        for (std::size_t i = 0; i < cells.size(); ++i) {
            ASSERT_EQ(numbers[i], plainClass(cells[i], limits)) << cells[i];
        }
    }
}

TEST(ClassifyCells, LeavesNullCellsNull)
{
    const std::vector<float> cells = {5, kNullA, 15, 25};
    std::vector<float> output(4, 77.0F);
    classifyCells(cells, kNullA, std::vector<float>{10, 20}, output);
    EXPECT_THAT(output, ElementsAre(1, kNullA, 2, 3));
}

TEST(ClassifyCells, WorksBeyondAStretch)
{
    const std::vector<float> limits = {-1, 0, 1.5F};
    const std::vector<float> cells = oddCells(5001, kNullA, 52);
    std::vector<float> output(cells.size());
    classifyCells(cells, kNullA, limits, output);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const float expected = cells[i] == kNullA ? kNullA : static_cast<float>(plainClass(cells[i], limits));
        ASSERT_EQ(output[i], expected);
    }
}

TEST(CountBins, CountsEachCellOnce)
{
    const std::vector<float> cells = {5, 10, 10.5F, 20, 21, kNullA, kNaN};
    std::vector<std::int64_t> counts(3);
    countBins(cells, kNullA, std::vector<float>{10, 20}, counts);
    EXPECT_THAT(counts, ElementsAre(2, 2, 2));
    countBins(cells, kNullA, std::vector<float>{10, 20}, counts); // adds up
    EXPECT_THAT(counts, ElementsAre(4, 4, 4));
}

TEST(CountBins, AgreesWithThePlainCount)
{
    const std::vector<float> cells = oddCells(20011, kNullA, 53);
    for (const std::vector<float>& limits :
         std::vector<std::vector<float>>{{0, 1}, {-3, -2, -2, 0.1F, 3}, {0, kNaN, -1, 2}}) {
        std::vector<std::int64_t> plain(limits.size() + 1);
        for (const float cell : cells) {
            if (cell != kNullA) {
                ++plain[static_cast<std::size_t>(plainClass(cell, limits)) - 1];
            }
        }
        std::vector<std::int64_t> counts(limits.size() + 1);
        countBins(cells, kNullA, risingLimits(tableOf(limits)), counts);
        EXPECT_EQ(counts, plain);
    }
}

} // namespace
} // namespace gridforge::test
