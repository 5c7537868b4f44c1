#include "core/computed.h"

#include "support/odd_cells.h"

#include <bit>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace gridforge::test {
namespace {

TEST(Stored, ANotANumberOfAnyBitsBecomesTheQuietOne)
{
    const std::vector<std::uint32_t> odd = {0x7fc00000, 0xffc00000, 0x7fc00001, 0xffffffff, 0x7f800001, 0xff800001};
    for (const std::uint32_t bits : odd) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(stored(std::bit_cast<float>(bits))), 0x7fc00000U) << bits;
        const std::uint64_t wide = std::uint64_t{bits} << 32U | (bits == 0x7f800001 || bits == 0xff800001 ? 1U : 0U);
        if (std::isnan(std::bit_cast<double>(wide))) {
            EXPECT_EQ(std::bit_cast<std::uint64_t>(stored(std::bit_cast<double>(wide))), 0x7ff8000000000000U);
        }
    }
}

TEST(Stored, NumbersKeepTheirBits)
{
    for (const float number : {0.0F, -0.0F, kInfinity, -kInfinity, 1.5F, -9999.0F, std::numeric_limits<float>::max(),
                               std::numeric_limits<float>::denorm_min()}) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(stored(number)), std::bit_cast<std::uint32_t>(number));
        const auto wide = static_cast<double>(number);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(stored(wide)), std::bit_cast<std::uint64_t>(wide));
    }
}

// Each of these lies so close to half way between two singles that a power in single precision goes to the wrong one.
// The exact values were worked out with sixty digits.
TEST(Power, IsRoundedOnceFromDouble)
{
    EXPECT_EQ(power(0x1.436a9ap+8F, 2.0F), 0x1.98962cp+16F);  // 0x1.98962cffe4a4p+16
    EXPECT_EQ(power(0x1.ece316p+10F, 2.0F), 0x1.da7cd4p+21F); // 0x1.da7cd30002f2p+21
    EXPECT_EQ(power(0x1.c5e51cp+9F, 1.5F), 0x1.ab5d36p+14F);  // 0x1.ab5d36ff7f91p+14
    EXPECT_EQ(power(0x1.cb58d2p+10F, 1.5F), 0x1.33a732p+16F); // 0x1.33a731003690p+16
    EXPECT_EQ(power(0x1.98276ap+9F, 3.0F), 0x1.03609cp+29F);  // 0x1.03609cfffd19p+29
    EXPECT_EQ(power(0x1.03c8ep+10F, 0.5F), 0x1.01e2a8p+5F);   // 0x1.01e2a8ff96fdp+5
    EXPECT_EQ(power(0x1.bbd7e8p+10F, 2.5F), 0x1.fa9f5ap+26F); // 0x1.fa9f5900755bp+26
}

TEST(Power, ASquareHasTheBitsOfTheDoublePower)
{
    const std::vector<float> ends = {0.0F, -0.0F, 1.0e-30F, 1.0e-23F, 3.0e-23F, 1.0e30F, kInfinity, -kInfinity, -1.1F};
    std::vector<float> bases = oddCells(2000, 0.37F, 5);
    bases.insert(bases.end(), ends.begin(), ends.end());
    for (const float base : bases) {
        const auto square = static_cast<float>(std::pow(static_cast<double>(base), 2.0));
        EXPECT_EQ(bitsOf({power(base, 2.0F)}), bitsOf({square})) << base;
    }
}

TEST(Power, EndsOfTheRange)
{
    EXPECT_EQ(power(0.0F, 2.0F), 0.0F);
    EXPECT_EQ(power(0.0F, -1.0F), kInfinity);
    EXPECT_EQ(power(1.0e30F, 3.0F), kInfinity); // beyond singles
    EXPECT_EQ(power(5.0F, 0.0F), 1.0F);
    EXPECT_TRUE(std::isnan(power(-2.0F, 0.5F)));
}

} // namespace
} // namespace gridforge::test
