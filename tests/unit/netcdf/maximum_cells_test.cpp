#include "netcdf/maximum_cells.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace gridforge {
namespace {

using testing::ElementsAre;

TEST(RaiseMaximum, KeepsTheHigherOfCellsAboveTheNullByAHundredth)
{
    std::vector<float> maximum = {-9999, -9999, 3, 3, 3};
    netcdf::raiseMaximum(std::vector<float>{-9999, -5, 2, 4, 3}, -9999, maximum);
    EXPECT_THAT(maximum, ElementsAre(-9999, -5, 3, 4, 3));

    std::vector<float> aroundZero(4);
    netcdf::raiseMaximum(std::vector<float>{0.01F, std::nextafter(0.01F, 1.0F), -1, 0.5F}, 0, aroundZero);
    EXPECT_THAT(aroundZero, ElementsAre(0, std::nextafter(0.01F, 1.0F), 0, 0.5F));
}

TEST(RaiseMaximum, WhereAHundredthIsLostInTheNullAnythingAboveItEnters)
{
    constexpr float kHuge = -3.0e8F;
    std::vector<float> maximum = {kHuge, kHuge};
    netcdf::raiseMaximum(std::vector<float>{kHuge, std::nextafter(kHuge, 0.0F)}, kHuge, maximum);
    EXPECT_THAT(maximum, ElementsAre(kHuge, std::nextafter(kHuge, 0.0F)));
}

TEST(RaiseMaximum, ACellThatIsNoNumberNeverEnters)
{
    std::vector<float> maximum = {-9999, 2};
    netcdf::raiseMaximum(std::vector<float>{std::nanf(""), std::nanf("")}, -9999, maximum);
    EXPECT_THAT(maximum, ElementsAre(-9999, 2));
}

TEST(RaiseMaximum, AgreesWithThePlainFormOnAnyBits)
{
    std::mt19937 random(5);
    const float nulls[] = {-9999, 0, 1.5F, -999.25F, std::numeric_limits<float>::lowest()};
    for (int round = 0; round < 200; ++round) {
        const float null = nulls[round % 5];
        std::vector<float> cells(1 + random() % 100);
        std::vector<float> maximum(cells.size());
        for (std::size_t i = 0; i < cells.size(); ++i) {
            cells[i] = random() % 2 == 0 ? std::bit_cast<float>(static_cast<std::uint32_t>(random()))
                                         : null + static_cast<float>(random() % 3) * 0.01F;
            maximum[i] = random() % 3 == 0 ? null : static_cast<float>(random() % 100);
        }
        std::vector<float> plain = maximum;
        const float above = null + 0.01F;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (cells[i] > above && cells[i] > plain[i]) {
                plain[i] = cells[i];
            }
        }
        netcdf::raiseMaximum(cells, null, maximum);
        ASSERT_EQ(std::memcmp(maximum.data(), plain.data(), plain.size() * sizeof(float)), 0);
    }
}

} // namespace
} // namespace gridforge
