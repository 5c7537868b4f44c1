#include "ops/dif_cells.h"

#include "support/odd_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr float kNullA = -9999.0F;
constexpr float kNullB = -999.0F;

// Both active, only b, only a, neither, a zero that is active, and a cell of b that holds the null of a.
const std::vector<float> kA = {5.0F, kNullA, 7.0F, kNullA, 0.0F, 1.0F};
const std::vector<float> kB = {2.0F, 3.0F, kNullB, kNullB, 0.0F, kNullA};

TEST(SubtractActive, GivesNullWhereEitherIsNull)
{
    std::vector<float> difference(6, 77.0F);
    ops::subtractActive({kA, kNullA}, {kB, kNullB}, difference);
    EXPECT_THAT(difference, ElementsAre(3.0F, kNullA, kNullA, kNullA, 0.0F, 10000.0F));
}

TEST(SubtractChange, TakesANullCellForZeroWhereTheOtherIsActive)
{
    std::vector<float> difference(6, 77.0F);
    ops::subtractChange({kA, kNullA}, {kB, kNullB}, difference);
    EXPECT_THAT(difference, ElementsAre(3.0F, -3.0F, 7.0F, kNullA, 0.0F, 10000.0F));
}

TEST(SubtractWetDry, MarksCellsThatAreActiveInOneGridOnly)
{
    std::vector<float> difference(6, 77.0F);
    std::vector<float> wetDry(6, 77.0F);
    ops::subtractWetDry({kA, kNullA}, {kB, kNullB}, difference, wetDry);
    EXPECT_THAT(difference, ElementsAre(3.0F, kNullA, kNullA, kNullA, 0.0F, 10000.0F));
    EXPECT_THAT(wetDry, ElementsAre(kNullA, -99.0F, 99.0F, kNullA, kNullA, kNullA));
}

TEST(SubtractChange, AZeroThatOnlyTheSecondHoldsGivesZero)
{
    std::vector<float> difference(1);
    ops::subtractChange({std::vector<float>{kNullA}, kNullA}, {std::vector<float>{0.0F}, kNullB}, difference);
    EXPECT_EQ(bitsOf(difference), bitsOf({0.0F})); // 0.0 - 0.0, and not its negative
}

TEST(Subtract, AgreesWithTheTableOfModesOnRandomCells)
{
    for (const std::size_t count : {1U, 3U, 1003U}) {
        const std::vector<float> a = oddCells(count, kNullA, 11);
        const std::vector<float> b = oddCells(count, kNullB, 12);
        std::vector<float> active(count);
        std::vector<float> change(count, kNullA);
        std::vector<float> classes(count, kNullA);
        for (std::size_t i = 0; i < count; ++i) {
            active[i] = kNullA;
            if (a[i] != kNullA && b[i] != kNullB) {
                active[i] = a[i] - b[i];
                change[i] = a[i] - b[i];
            } else if (b[i] != kNullB) {
                change[i] = 0.0F - b[i];
                classes[i] = -99.0F;
            } else if (a[i] != kNullA) {
                change[i] = a[i];
                classes[i] = 99.0F;
            }
        }
        std::vector<float> difference(count);
        std::vector<float> wetDry(count);
        ops::subtractActive({a, kNullA}, {b, kNullB}, difference);
        EXPECT_EQ(bitsOf(difference), bitsOf(active));
        ops::subtractChange({a, kNullA}, {b, kNullB}, difference);
        EXPECT_EQ(bitsOf(difference), bitsOf(change));
        ops::subtractWetDry({a, kNullA}, {b, kNullB}, difference, wetDry);
        EXPECT_EQ(bitsOf(difference), bitsOf(active));
        EXPECT_EQ(bitsOf(wetDry), bitsOf(classes));
    }
}

TEST(Dif, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    for (const auto& [a, b] : {std::pair{kInfinity, kInfinity}, {kOddNaN, 1.0F}, {1.0F, kOddNaN}}) {
        const std::vector<float> first(kVectorsAndRest, a);
        const std::vector<float> second(kVectorsAndRest, b);
        std::vector<float> difference(kVectorsAndRest);
        std::vector<float> wetDry(kVectorsAndRest);
        ops::subtractActive({first, kNullA}, {second, kNullB}, difference);
        EXPECT_TRUE(allQuietNaN(difference));
        ops::subtractChange({first, kNullA}, {second, kNullB}, difference);
        EXPECT_TRUE(allQuietNaN(difference));
        ops::subtractWetDry({first, kNullA}, {second, kNullB}, difference, wetDry);
        EXPECT_TRUE(allQuietNaN(difference));
    }
    const std::vector<float> nulls(kVectorsAndRest, kNullA);
    const std::vector<float> odd(kVectorsAndRest, kOddNaN);
    std::vector<float> difference(kVectorsAndRest);
    ops::subtractChange({nulls, kNullA}, {odd, kNullB}, difference); // 0 - b
    EXPECT_TRUE(allQuietNaN(difference));
    const std::vector<float> otherNulls(kVectorsAndRest, kNullB);
    ops::subtractChange({odd, kNullA}, {otherNulls, kNullB}, difference); // a is only copied
    EXPECT_EQ(std::bit_cast<std::uint32_t>(difference.back()), std::bit_cast<std::uint32_t>(kOddNaN));
}

} // namespace
} // namespace gridforge::test
