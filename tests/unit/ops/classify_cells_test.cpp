#include "ops/classify_cells.h"

#include "support/odd_cells.h"
#include "unit/ops/plain_classes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;

std::vector<std::int32_t> classesOf(const std::vector<float>& cells, const std::vector<float>& limits)
{
    std::vector<std::int32_t> numbers(cells.size());
    ops::findClasses(cells, ops::risingLimits(tableOf(limits)), numbers);
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
    ops::classifyCells(cells, kNullA, std::vector<float>{10, 20}, output);
    EXPECT_THAT(output, ElementsAre(1, kNullA, 2, 3));
}

TEST(ClassifyCells, WorksBeyondAStretch)
{
    const std::vector<float> limits = {-1, 0, 1.5F};
    const std::vector<float> cells = oddCells(5001, kNullA, 52);
    std::vector<float> output(cells.size());
    ops::classifyCells(cells, kNullA, limits, output);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const float expected = cells[i] == kNullA ? kNullA : static_cast<float>(plainClass(cells[i], limits));
        ASSERT_EQ(output[i], expected);
    }
}

TEST(ClassifyCells, TakesAnyNumberOfLimits)
{
    const std::vector<float> cells = oddCells(3001, kNullA, 54);
    for (const std::size_t count : kCountsOfLimits) {
        for (const float first : {-3.0F, kNaN, -kInfinity}) {
            std::vector<float> limits = manyLimits(count);
            limits.front() = first;
            std::vector<float> output(cells.size());
            ops::classifyCells(cells, kNullA, limits, output);
            for (std::size_t i = 0; i < cells.size(); ++i) {
                const float expected = cells[i] == kNullA ? kNullA : static_cast<float>(plainClass(cells[i], limits));
                ASSERT_EQ(output[i], expected) << cells[i] << " among " << count;
            }
        }
    }
}

} // namespace
} // namespace gridforge::test
