#include "core/number_text.h"

#include <array>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace gridforge {
namespace {

constexpr float kInfF = std::numeric_limits<float>::infinity();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMinInt = std::numeric_limits<std::int32_t>::min();

std::string times(std::size_t count, char c)
{
    return std::string(count, c);
}

// --- Fixed notation --------------------------------------------------------------------------------------------------

TEST(FixedText, AlwaysHasItsPoint)
{
    EXPECT_EQ(fixedText(12.5, 3), "12.500");
    EXPECT_EQ(fixedText(12.0, 0), "12.");
    EXPECT_EQ(fixedText(0.0, 0), "0.");
    EXPECT_EQ(fixedText(-0.25, 3), "-0.250");
    EXPECT_EQ(fixedText(12.0, -3), "12.");
}

TEST(FixedText, RoundsTheStoredValueWithTiesToEven)
{
    EXPECT_EQ(fixedText(0.125, 2), "0.12");
    EXPECT_EQ(fixedText(0.375, 2), "0.38");
    EXPECT_EQ(fixedText(0.5, 0), "0.");
    EXPECT_EQ(fixedText(1.5, 0), "2.");
    EXPECT_EQ(fixedText(2.5, 0), "2.");
    EXPECT_EQ(fixedText(-2.5, 0), "-2.");
    EXPECT_EQ(fixedText(0.135, 2), "0.14") << "stored a little above";
    EXPECT_EQ(fixedText(1.005, 2), "1.00") << "stored a little below";
    EXPECT_EQ(fixedText(999.9996, 3), "1000.000");
}

TEST(FixedText, ShowsAWidenedFloatExactly)
{
    EXPECT_EQ(fixedText(static_cast<double>(0.1F), 27), "0.100000001490116119384765625");
    EXPECT_EQ(fixedText(static_cast<double>(0.1F), 3), "0.100");
}

TEST(FixedText, KeepsTheSignOfWhatRoundsToNothing)
{
    EXPECT_EQ(fixedText(-0.0001, 3), "-0.000");
    EXPECT_EQ(fixedText(-0.0, 1), "-0.0");
}

TEST(FixedText, NamesWhatIsNoNumber)
{
    EXPECT_EQ(fixedText(kNan, 3), "NaN");
    EXPECT_EQ(fixedText(-kNan, 3), "NaN");
    EXPECT_EQ(fixedText(kInf, 3), "Infinity");
    EXPECT_EQ(fixedText(-kInf, 0), "-Infinity");
}

TEST(FixedText, HoldsTheLargestAndTheSmallest)
{
    const std::string largest = fixedText(-DBL_MAX, 300);
    EXPECT_EQ(largest.size(), 1 + 309 + 1 + 300U);
    EXPECT_EQ(largest.substr(0, 18), "-17976931348623157");
    EXPECT_EQ(largest.substr(310), "." + times(300, '0'));

    // 2^-1074 has its first digit at place 324 and its last, a 5, at place 1074.
    const std::string smallest = fixedText(DBL_TRUE_MIN, 1100);
    EXPECT_EQ(smallest.substr(0, 2 + 323 + 6), "0." + times(323, '0') + "494065");
    EXPECT_EQ(smallest.substr(2 + 1073), "5" + times(26, '0'));
    EXPECT_EQ(fixedText(DBL_TRUE_MIN, 324), "0." + times(323, '0') + "5");
}

TEST(FixedText, AgreesWithTheCLibraryOnRandomValues)
{
    std::mt19937_64 random(2); // NOLINT: the same numbers in every run
    std::uniform_real_distribution<double> exponent(-12, 20);
    for (int i = 0; i < 20000; ++i) {
        const double size = std::pow(10.0, exponent(random));
        const double value = i % 2 == 0 ? size : -static_cast<double>(static_cast<float>(size));
        const int decimals = i % 13 + 1;
        std::array<char, 100> witness{};
        std::snprintf(witness.data(), witness.size(), "%.*f", decimals, value);
        ASSERT_EQ(fixedText(value, decimals), witness.data());
    }
}

// --- Fields ----------------------------------------------------------------------------------------------------------

TEST(RealField, IsRightJustified)
{
    EXPECT_EQ(realField(12.5, 8, 2), "   12.50");
    EXPECT_EQ(realField(12.5, 5, 2), "12.50");
    EXPECT_EQ(realField(kNan, 8, 2), "     NaN");
    EXPECT_EQ(realField(0.5, 6, 0), "    0.");
}

TEST(RealField, IsFilledByWhatDoesNotFit)
{
    EXPECT_EQ(realField(12.5, 4, 2), "****");
    EXPECT_EQ(realField(-99.96, 5, 1), "*****") << "-100.0 after rounding";
    EXPECT_EQ(realField(kNan, 2, 0), "**");
    EXPECT_EQ(realField(1.0, 3, 3), "***");
    EXPECT_EQ(realField(1.0, 3, kMaxInt), "***");
    EXPECT_EQ(realField(1.0, 0, 3), "");
    EXPECT_EQ(realField(1.0, -1, 3), "");
}

TEST(RealField, GivesALeadingZeroUpOnlyWhereItAloneIsTooMuch)
{
    EXPECT_EQ(realField(0.5, 5, 3), "0.500");
    EXPECT_EQ(realField(0.5, 4, 3), ".500");
    EXPECT_EQ(realField(-0.5, 5, 3), "-.500");
    EXPECT_EQ(realField(-0.5, 4, 3), "****");
    EXPECT_EQ(realField(0.5, 3, 3), "***");
    EXPECT_EQ(realField(10.5, 4, 3), "****");
    EXPECT_EQ(realField(-0.0, 3, 1), "-.0");
    EXPECT_EQ(realField(0.0, 1, 0), "*") << "a point alone is no number";
}

TEST(RealField, ShortensInfinityInAFieldUnder8)
{
    EXPECT_EQ(realField(kInf, 8, 2), "Infinity");
    EXPECT_EQ(realField(kInf, 7, 2), "    Inf");
    EXPECT_EQ(realField(-kInf, 9, 2), "-Infinity");
    EXPECT_EQ(realField(-kInf, 7, 2), "   -Inf");
    EXPECT_EQ(realField(-kInf, 3, 2), "***");
    EXPECT_EQ(realField(kInf, 3, 9), "Inf");
}

TEST(IntegerField, IsRightJustifiedOrFilled)
{
    EXPECT_EQ(integerField(100, 8), "     100");
    EXPECT_EQ(integerField(-100, 4), "-100");
    EXPECT_EQ(integerField(-100, 3), "***");
    EXPECT_EQ(integerField(0, 0), "");
    EXPECT_EQ(integerField(5, -2), "");
    EXPECT_EQ(integerField(std::numeric_limits<std::int64_t>::min(), 21), " -9223372036854775808");
}

// --- Numbers as texts ------------------------------------------------------------------------------------------------

TEST(Ainteger, IsPlainDigits)
{
    EXPECT_EQ(AINTEGER(0), "0");
    EXPECT_EQ(AINTEGER(-12), "-12");
    EXPECT_EQ(AINTEGER(kMinInt), "-2147483648");
}

TEST(Aintegerprec0, HasAtLeastTheDigits)
{
    EXPECT_EQ(AINTEGERPREC0(7, 4), "0007");
    EXPECT_EQ(AINTEGERPREC0(12345, 4), "12345");
    EXPECT_EQ(AINTEGERPREC0(0, 2), "00");
    EXPECT_EQ(AINTEGERPREC0(7, 0), "7");
    EXPECT_EQ(AINTEGERPREC0(7, -1), "7");
    EXPECT_EQ(AINTEGERPREC0(7, 20), times(19, '0') + "7");
    EXPECT_EQ(AINTEGERPREC0(7, 21), times(19, '0') + "7") << "the field is 20 wide";
    EXPECT_EQ(AINTEGER8PREC0(5000000000, 12), "005000000000");
}

TEST(Areal, TakesItsDecimalsFromTheMagnitude)
{
    // Values with more digits than are shown: 6, 5, 4, 3, 2, 1 and 0 decimals.
    EXPECT_EQ(AREAL(0.0012345678F), "0.001235");
    EXPECT_EQ(AREAL(0.012345678F), "0.01235");
    EXPECT_EQ(AREAL(0.12345678F), "0.1235");
    EXPECT_EQ(AREAL(1.2345678F), "1.235");
    EXPECT_EQ(AREAL(12.345678F), "12.35");
    EXPECT_EQ(AREAL(123.45678F), "123.5");
    EXPECT_EQ(AREAL(1234.5678F), "1235.");
    EXPECT_EQ(AREAL(-0.0012345678F), "-0.001235") << "the sign does not count";
    EXPECT_EQ(AREAL(-123.45678F), "-123.5");
}

TEST(Areal, ChangesItsDecimalsAtTheSteps)
{
    EXPECT_EQ(AREAL(0.01F), "0.01");
    EXPECT_EQ(AREAL(std::nextafter(10.0F, 0.0F)), "10.") << "9.999999 to 3 decimals";
    EXPECT_EQ(AREAL(9.9994F), "9.999");
    EXPECT_EQ(AREAL(10.0046F), "10.");
    EXPECT_EQ(AREAL(1000.4F), "1000.");
    EXPECT_EQ(AREAL(999.94F), "999.9");
}

TEST(Areal, CutsTrailingZerosUpToThePoint)
{
    EXPECT_EQ(AREAL(0.0F), "0.");
    EXPECT_EQ(AREAL(2.5F), "2.5");
    EXPECT_EQ(AREAL(2.50F), "2.5");
    EXPECT_EQ(AREAL(3.0F), "3.");
    EXPECT_EQ(AREAL(-9999.0F), "-9999.");
    EXPECT_EQ(AREAL(12345.0F), "12345.");
    EXPECT_EQ(AREAL(12000.0F), "12000.");
    EXPECT_EQ(AREAL(100.0F), "100.");
    EXPECT_EQ(AREAL(-0.0F), "-0.");
    EXPECT_EQ(AREAL(1e-9F), "0.");
}

TEST(Areal, FillsTheFieldOf20)
{
    EXPECT_EQ(AREAL(1e18F), "999999984306749440.") << "19 characters of the stored value";
    EXPECT_EQ(AREAL(9e18F), "9000000202358128640.");
    EXPECT_EQ(AREAL(-9e18F), times(20, '*'));
    EXPECT_EQ(AREAL(FLT_MAX), times(20, '*'));
    EXPECT_EQ(AREAL(kInfF), "Infinity");
    EXPECT_EQ(AREAL(-kInfF), "-Infinity");
    EXPECT_EQ(AREAL(std::numeric_limits<float>::quiet_NaN()), "NaN");
}

TEST(Areal8, TakesItsDecimalsFromTheMagnitude)
{
    EXPECT_EQ(AREAL8(0.01234567890123), "0.0123456789");
    EXPECT_EQ(AREAL8(0.12345678912345), "0.1234567891");
    EXPECT_EQ(AREAL8(1.23456789123456), "1.234567891");
    EXPECT_EQ(AREAL8(12.3456789123456), "12.34567891");
    EXPECT_EQ(AREAL8(123.456789123456), "123.4567891");
    EXPECT_EQ(AREAL8(1234.56789123456), "1234.567891");
    EXPECT_EQ(AREAL8(12345.6789123456), "12345.67891");
    EXPECT_EQ(AREAL8(123456.789123456), "123456.7891");
    EXPECT_EQ(AREAL8(1234567.89123456), "1234567.891");
    EXPECT_EQ(AREAL8(12345678.9123456), "12345678.91");
    EXPECT_EQ(AREAL8(123456789.123456), "123456789.1");
    EXPECT_EQ(AREAL8(1234567891.23456), "1234567891.");
    EXPECT_EQ(AREAL8(-1234567.89123456), "-1234567.891");
}

TEST(Areal8, CutsTrailingZerosUpToThePoint)
{
    EXPECT_EQ(AREAL8(0.0), "0.");
    EXPECT_EQ(AREAL8(0.5), "0.5");
    EXPECT_EQ(AREAL8(500000.0), "500000.");
    EXPECT_EQ(AREAL8(1e10), "10000000000.");
    EXPECT_EQ(AREAL8(1e20), times(20, '*'));
    EXPECT_EQ(AREAL8(1e18), "1000000000000000000.");
    EXPECT_EQ(AREAL8(kNan), "NaN");
}

TEST(Areald, KeepsTrailingZeros)
{
    EXPECT_EQ(AREALD(2.5F, 3), "2.500");
    EXPECT_EQ(AREALD(-2.5F, 0), "-2.");
    EXPECT_EQ(AREALD(2.0F, 1), "2.0");
    EXPECT_EQ(AREALD(2.5F, -4), "2.");
    EXPECT_EQ(AREALD(0.1F, 12), "0.100000001490") << "the single value as stored";
    EXPECT_EQ(AREALD8(0.1, 12), "0.100000000000");
    EXPECT_EQ(AREALD8(-0.001, 2), "-0.00");
}

TEST(Areald, HasAFieldOf20)
{
    EXPECT_EQ(AREALD(0.5F, 18), "0.5" + times(17, '0'));
    EXPECT_EQ(AREALD(0.5F, 19), ".5" + times(18, '0')) << "the leading zero goes";
    EXPECT_EQ(AREALD(-0.5F, 18), "-.5" + times(17, '0'));
    EXPECT_EQ(AREALD(0.5F, 20), times(20, '*'));
    EXPECT_EQ(AREALD(1.5F, 19), times(20, '*'));
    EXPECT_EQ(AREALD8(1e18, 1), times(20, '*'));
    EXPECT_EQ(AREALD8(0.5, 300), times(20, '*'));
    EXPECT_EQ(AREALD8(0.5, kMaxInt), times(20, '*'));
    EXPECT_EQ(AREALD8(kInf, kMaxInt), "Infinity");
}

} // namespace
} // namespace gridforge
