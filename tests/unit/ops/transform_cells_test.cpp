#include "ops/transform_cells.h"

#include "support/odd_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNull = -9999.0F;

TEST(TransformCells, LeavesNullCellsAlone)
{
    const std::vector<float> cells = {2.0F, kNull, -4.0F};
    std::vector<float> output(3, 77.0F);
    ops::transformCells(cells, 0.5F, 10.0F, kNull, output);
    EXPECT_THAT(output, ElementsAre(11.0F, kNull, 8.0F));
}

TEST(TransformCells, RoundsTheProductBeforeTheSum)
{
    // 4097 x 4097 = 16785409 lies between 16785408 and 16785410, and the tie goes to the even 16785408. Fused, the result
    // were 1.
    const std::vector<float> cells = {4097.0F};
    std::vector<float> output(1);
    ops::transformCells(cells, 4097.0F, -16785408.0F, kNull, output);
    EXPECT_THAT(output, ElementsAre(0.0F));
}

TEST(TransformCells, AgreesWithThePlainFormOnRandomCells)
{
    const std::vector<float> a = oddCells(1001, kNull, 31);
    std::vector<float> transformed;
    for (const float cell : a) {
        float product = cell * 0.3048F;
        product = product + 10.7F;
        transformed.push_back(cell == kNull ? kNull : product);
    }
    std::vector<float> output(a.size());
    ops::transformCells(a, 0.3048F, 10.7F, kNull, output);
    EXPECT_EQ(bitsOf(output), bitsOf(transformed));
}

TEST(TransformCells, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    std::vector<float> output(kVectorsAndRest);
    ops::transformCells(std::vector<float>(kVectorsAndRest, kInfinity), 0.0F, 1.0F, kNull, output); // infinity times 0
    EXPECT_TRUE(allQuietNaN(output));
    ops::transformCells(std::vector<float>(kVectorsAndRest, kOddNaN), 1.0F, 0.0F, kNull, output);
    EXPECT_TRUE(allQuietNaN(output));
}

} // namespace
} // namespace gridforge::test
