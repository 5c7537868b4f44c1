#include "ops/multiply_cells.h"

#include "support/odd_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;
constexpr float kNullB = 3.0F;

TEST(MultiplyCells, NeedsBothCellsActive)
{
    const std::vector<float> a = {2.0F, kNullA, 4.0F, kNullA, 3.0F};
    const std::vector<float> b = {5.0F, 6.0F, kNullB, kNullB, kNullA};
    std::vector<float> output(5, 77.0F);
    ops::multiplyCells(a, kNullA, b, kNullB, output);
    EXPECT_THAT(output, ElementsAre(10.0F, kNullA, kNullA, kNullA, -29997.0F)); // 3 x -9999: no null of the second grid
}

TEST(MultiplyCells, AgreesWithThePlainFormOnRandomCells)
{
    const std::vector<float> a = oddCells(1001, kNullA, 31);
    const std::vector<float> b = oddCells(1001, kNullB, 32);
    std::vector<float> multiplied;
    for (std::size_t i = 0; i < a.size(); ++i) {
        multiplied.push_back(a[i] != kNullA && b[i] != kNullB ? a[i] * b[i] : kNullA);
    }
    std::vector<float> output(a.size());
    ops::multiplyCells(a, kNullA, b, kNullB, output);
    EXPECT_EQ(bitsOf(output), bitsOf(multiplied));
}

TEST(MultiplyCells, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    std::vector<float> output(kVectorsAndRest);
    ops::multiplyCells(std::vector<float>(kVectorsAndRest, kInfinity), kNullA,
                       std::vector<float>(kVectorsAndRest, 0.0F), kNullB, output);
    EXPECT_TRUE(allQuietNaN(output));
}

} // namespace
} // namespace gridforge::test
