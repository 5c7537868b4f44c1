#include "ops/transform_cells.h"

#include "support/odd_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;
constexpr float kNullB = 3.0F;

TEST(TransformCells, LeavesNullCellsAlone)
{
    const std::vector<float> cells = {2.0F, kNullA, -4.0F};
    std::vector<float> output(3, 77.0F);
    ops::transformCells(cells, 0.5F, 10.0F, kNullA, output);
    EXPECT_THAT(output, ElementsAre(11.0F, kNullA, 8.0F));
}

TEST(TransformCells, RoundsTheProductBeforeTheSum)
{
    // 4097 x 4097 = 16785409 lies between 16785408 and 16785410, and the tie goes to the even 16785408. Fused, the result
    // were 1.
    const std::vector<float> cells = {4097.0F};
    std::vector<float> output(1);
    ops::transformCells(cells, 4097.0F, -16785408.0F, kNullA, output);
    EXPECT_THAT(output, ElementsAre(0.0F));
}

TEST(MultiplyCells, NeedsBothCellsActive)
{
    const std::vector<float> a = {2.0F, kNullA, 4.0F, kNullA, 3.0F};
    const std::vector<float> b = {5.0F, 6.0F, kNullB, kNullB, kNullA};
    std::vector<float> output(5, 77.0F);
    ops::multiplyCells(a, kNullA, b, kNullB, output);
    EXPECT_THAT(output, ElementsAre(10.0F, kNullA, kNullA, kNullA, -29997.0F)); // 3 x -9999: no null of the second grid
}

TEST(TransformAndMultiply, AgreeWithThePlainFormsOnRandomCells)
{
    const std::vector<float> a = oddCells(1001, kNullA, 31);
    const std::vector<float> b = oddCells(1001, kNullB, 32);
    std::vector<float> transformed;
    std::vector<float> multiplied;
    for (std::size_t i = 0; i < a.size(); ++i) {
        float product = a[i] * 0.3048F;
        product = product + 10.7F;
        transformed.push_back(a[i] == kNullA ? kNullA : product);
        multiplied.push_back(a[i] != kNullA && b[i] != kNullB ? a[i] * b[i] : kNullA);
    }
    std::vector<float> output(a.size());
    ops::transformCells(a, 0.3048F, 10.7F, kNullA, output);
    EXPECT_EQ(bitsOf(output), bitsOf(transformed));
    ops::multiplyCells(a, kNullA, b, kNullB, output);
    EXPECT_EQ(bitsOf(output), bitsOf(multiplied));
}

TEST(TransformCells, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    std::vector<float> output(kVectorsAndRest);
    ops::transformCells(std::vector<float>(kVectorsAndRest, kInfinity), 0.0F, 1.0F, kNullA, output); // infinity times 0
    EXPECT_TRUE(allQuietNaN(output));
    ops::transformCells(std::vector<float>(kVectorsAndRest, kOddNaN), 1.0F, 0.0F, kNullA, output);
    EXPECT_TRUE(allQuietNaN(output));
    ops::multiplyCells(std::vector<float>(kVectorsAndRest, kInfinity), kNullA,
                       std::vector<float>(kVectorsAndRest, 0.0F), kNullB, output);
    EXPECT_TRUE(allQuietNaN(output));
}

} // namespace
} // namespace gridforge::test
