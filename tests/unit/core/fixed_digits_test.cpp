#include "core/fixed_digits.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace gridforge {
namespace {

std::string digitsOf(double value, int decimals)
{
    FixedRoom room;
    return std::string(fixedDigits(value, decimals, room));
}

// The C library rounds exactly too.
std::string byCLibrary(double value, int decimals)
{
    std::array<char, 400> text{};
    std::snprintf(text.data(), text.size(), "%#.*f", decimals, value);
    return text.data();
}

TEST(FixedDigits, HaveADigitBeforeThePointAndThePointAlways)
{
    EXPECT_EQ(digitsOf(0.0, 3), "0.000");
    EXPECT_EQ(digitsOf(-0.0, 1), "-0.0");
    EXPECT_EQ(digitsOf(0.25, 2), "0.25");
    EXPECT_EQ(digitsOf(-12.5, 0), "-12.");
    EXPECT_EQ(digitsOf(382000.123, 6), "382000.123000");
}

TEST(FixedDigits, RoundTiesToEven)
{
    EXPECT_EQ(digitsOf(0.125, 2), "0.12");
    EXPECT_EQ(digitsOf(0.375, 2), "0.38");
    EXPECT_EQ(digitsOf(0.5, 0), "0.");
    EXPECT_EQ(digitsOf(1.5, 0), "2.");
    EXPECT_EQ(digitsOf(9.5, 0), "10.");
    EXPECT_EQ(digitsOf(0.1, 1), "0.1");
    EXPECT_EQ(digitsOf(-0.0005, 3), "-0.001"); // the double lies above the tie
    EXPECT_EQ(digitsOf(-0.0004, 3), "-0.000");
}

TEST(FixedDigits, AreLeftToOthersWhereTheyDoNotFit)
{
    EXPECT_EQ(digitsOf(std::numeric_limits<double>::quiet_NaN(), 3), "");
    EXPECT_EQ(digitsOf(std::numeric_limits<double>::infinity(), 3), "");
    EXPECT_EQ(digitsOf(1.5, -1), "");
    EXPECT_EQ(digitsOf(1.5, 13), "");
    EXPECT_EQ(digitsOf(0x1p52, 0), "");
    EXPECT_EQ(digitsOf(1e6, 12), ""); // 19 digits
    EXPECT_EQ(digitsOf(999999.5, 12), "999999.500000000000");
}

TEST(FixedDigits, AreThoseOfTheCLibrary)
{
    std::mt19937_64 random(1);
    std::size_t left = 0;
    for (int i = 0; i < 300'000; ++i) {
        // Any sign and mantissa, sizes from 2^-50 to 2^45.
        const std::uint64_t exponent = 1023 - 50 + random() % 96;
        const auto value = std::bit_cast<double>((random() & 0x800f'ffff'ffff'ffffU) | (exponent << 52));
        // Few bits make ties.
        const double rounded =
            i % 2 == 0 ? value : static_cast<double>(static_cast<float>(std::round(value * 64) / 64));
        const auto decimals = static_cast<int>(random() % 13);
        const std::string digits = digitsOf(rounded, decimals);
        if (digits.empty()) {
            EXPECT_GT(byCLibrary(std::abs(rounded), decimals).size(), 19U);
            ++left;
        } else {
            ASSERT_EQ(digits, byCLibrary(rounded, decimals)) << rounded << " with " << decimals;
        }
    }
    EXPECT_LT(left, 100'000U);
}

TEST(FixedDigits, OfTheSmallestValuesAreZeros)
{
    for (const double value :
         {std::numeric_limits<double>::denorm_min(), -std::numeric_limits<double>::min(), 0x1p-94}) {
        EXPECT_EQ(digitsOf(value, 12), byCLibrary(value, 12));
    }
}

} // namespace
} // namespace gridforge
