#include "grid/asc_format.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace gridforge {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::string formatted(const std::vector<float>& row, int width, int decimals)
{
    const std::size_t size = row.size() * static_cast<std::size_t>(std::max(width, 0));
    std::vector<char> text(size, '?'); // a heap block of its size, so that a byte too far is found
    grid::formatAscRow(row, width, decimals, text.data());
    return {text.data(), text.size()};
}

// One value among so many that the vector path takes it, which must give what it gives alone.
std::string field(float value, int width, int decimals)
{
    std::string alone = formatted({value}, width, decimals);
    const std::string among = formatted(std::vector<float>(20, value), width, decimals);
    for (std::size_t i = 0; i < 20; ++i) {
        EXPECT_EQ(among.substr(i * alone.size(), alone.size()), alone) << i;
    }
    return alone;
}

// The rules of a field on top of the C library's correctly rounded digits.
std::string plainField(float value, int width, int decimals)
{
    const auto room = static_cast<std::size_t>(width);
    std::string text;
    if (std::isnan(value)) {
        text = "NaN";
    } else if (std::isinf(value)) {
        text = (value < 0 ? "-" : "") + std::string(width < 8 ? "Inf" : "Infinity");
    } else {
        std::vector<char> digits(80 + static_cast<std::size_t>(decimals));
        std::snprintf(digits.data(), digits.size(), "%#.*f", decimals, static_cast<double>(value));
        text = digits.data();
        const std::size_t zero = text.find_first_not_of('-');
        if (text.size() == room + 1 && text[zero] == '0' && decimals > 0) {
            text.erase(zero, 1);
        }
    }
    return text.size() > room ? std::string(room, '*') : std::string(room - text.size(), ' ') + text;
}

void expectPlainFields(const std::vector<float>& row, int width, int decimals)
{
    const std::string text = formatted(row, width, decimals);
    for (std::size_t i = 0; i < row.size(); ++i) {
        const auto room = static_cast<std::size_t>(width);
        ASSERT_EQ(text.substr(i * room, room), plainField(row[i], width, decimals))
            << row[i] << " in " << width << "." << decimals;
    }
}

TEST(AscFormat, FieldsOfADefaultGrid)
{
    EXPECT_EQ(formatted({12.5F, -9999, 12.25F}, 10, 3), "    12.500 -9999.000    12.250");
}

TEST(AscFormat, FieldsOfAllTheDigitsThatScalingGives)
{
    // Sixteen digits, the point and a sign: what is scaled stays below 2^51, about 2.25e15.
    for (const auto& [value, decimals] : {std::pair(-1.5e12F, 3), std::pair(-2.0e15F, 0), std::pair(-1500.25F, 12)}) {
        std::vector<char> text(20);
        grid::formatAscFields(std::vector<float>{value}, 20, decimals, text.data());
        EXPECT_EQ(std::string(text.data(), text.size()), plainField(value, 20, decimals));
    }
}

TEST(AscFormat, NoDecimalsKeepThePoint)
{
    EXPECT_EQ(field(12, 7, 0), "    12.");
    EXPECT_EQ(field(-9999, 7, 0), " -9999.");
    EXPECT_EQ(field(0, 7, 0), "     0.");
    EXPECT_EQ(field(0, 2, 0), "0.");
}

TEST(AscFormat, TiesOfTheStoredValueGoToEven)
{
    EXPECT_EQ(field(0.5F, 7, 0), "     0.");
    EXPECT_EQ(field(1.5F, 7, 0), "     2.");
    EXPECT_EQ(field(2.5F, 7, 0), "     2.");
    EXPECT_EQ(field(0.125F, 8, 2), "    0.12");
    EXPECT_EQ(field(0.375F, 8, 2), "    0.38");
    EXPECT_EQ(field(-0.0625F, 10, 3), "    -0.062");
    EXPECT_EQ(field(0.0005F, 10, 3), "     0.001"); // stored a little above
    EXPECT_EQ(field(0.0015F, 10, 3), "     0.002"); // stored above, too
    EXPECT_EQ(field(1.005F, 10, 2), "      1.00");  // stored below
}

TEST(AscFormat, NegativeThatRoundsToNothingKeepsItsSign)
{
    EXPECT_EQ(field(-0.0001F, 10, 3), "    -0.000");
    EXPECT_EQ(field(-0.0F, 10, 3), "    -0.000");
    EXPECT_EQ(field(-0.3F, 7, 0), "    -0.");
}

TEST(AscFormat, LeadingZeroGoesWhereItAloneIsTooWide)
{
    EXPECT_EQ(field(0.25F, 5, 3), "0.250");
    EXPECT_EQ(field(0.25F, 4, 3), ".250");
    EXPECT_EQ(field(-0.25F, 5, 3), "-.250");
    EXPECT_EQ(field(-0.25F, 4, 3), "****");
    EXPECT_EQ(field(0.25F, 3, 3), "***");
}

TEST(AscFormat, TooWideIsStars)
{
    EXPECT_EQ(field(123456, 8, 3), "********");
    EXPECT_EQ(field(99999.996F, 9, 3), "99999.992"); // stored 99999.9921875
    EXPECT_EQ(field(-99999.996F, 9, 3), "*********");
    EXPECT_EQ(field(9.996F, 4, 2), "****"); // rounds up to a digit more
    EXPECT_EQ(field(5, 1, 0), "*");
}

TEST(AscFormat, NotANumberAndInfinity)
{
    EXPECT_EQ(field(kNaN, 10, 3), "       NaN");
    EXPECT_EQ(field(-kNaN, 10, 3), "       NaN");
    EXPECT_EQ(field(kInfinity, 10, 3), "  Infinity");
    EXPECT_EQ(field(-kInfinity, 10, 3), " -Infinity");
    EXPECT_EQ(field(kInfinity, 7, 3), "    Inf");
    EXPECT_EQ(field(-kInfinity, 7, 3), "   -Inf");
    EXPECT_EQ(field(kInfinity, 8, 3), "Infinity");
    EXPECT_EQ(field(-kInfinity, 8, 3), "********");
    EXPECT_EQ(field(kNaN, 2, 0), "**");
}

TEST(AscFormat, NoRoomWritesNothing)
{
    EXPECT_EQ(formatted({1, 2, 3}, 0, 3), "");
    EXPECT_EQ(formatted({}, 10, 3), "");
}

TEST(AscFormat, ManyDecimalsAreExact)
{
    EXPECT_EQ(field(0.1F, 32, 29), " 0.10000000149011611938476562500");
    EXPECT_EQ(field(-2.5F, 25, 20), "  -2.50000000000000000000");
    EXPECT_EQ(field(16777216, 30, 12), "         16777216.000000000000");
}

TEST(AscFormat, LargeValuesAreExact)
{
    EXPECT_EQ(field(123456.7F, 12, 3), "  123456.703");
    EXPECT_EQ(field(1e15F, 20, 1), "   999999986991104.0");
    EXPECT_EQ(field(std::numeric_limits<float>::max(), 42, 0), "  340282346638528859811704183484516925440.");
}

TEST(AscFormat, ValuesAcrossTheVectorLimitInOneRow)
{
    expectPlainFields(
        {99999.99F, 99999.999F, 100000, -100000, kNaN, -99999.99F, 1, 2, 0, -0.0F, 1e30F, 0.5F, 12, -kInfinity}, 10, 3);
}

TEST(AscFormat, EveryRowLength)
{
    std::vector<float> row;
    for (int i = 0; i < 60; ++i) {
        expectPlainFields(row, 10, 3);
        expectPlainFields(row, 5, 1);
        row.push_back(static_cast<float>(i) * -1.37F);
    }
}

TEST(AscFormat, RandomValuesHaveTheDigitsOfTheCLibrary)
{
    std::mt19937_64 random(1);
    for (int i = 0; i < 2000; ++i) {
        const int decimals = static_cast<int>(random() % (i % 4 == 0 ? 16 : 8));
        const int width = 1 + static_cast<int>(random() % 24);
        const double scale = std::pow(10.0, static_cast<double>(random() % 8));
        std::vector<float> row(150);
        for (float& value : row) {
            value = static_cast<float>((static_cast<double>(random()) / 1.8446744073709552e19 - 0.5) * scale);
        }
        expectPlainFields(row, width, decimals);
    }
}

TEST(AscFormat, DefaultGridsHaveTheDigitsOfTheCLibrary)
{
    std::mt19937_64 random(2);
    std::vector<float> row(300000);
    for (float& value : row) {
        value = static_cast<float>(static_cast<double>(random() % 2000000) / 8192.0 - 100); // many ties
    }
    expectPlainFields(row, 10, 3);
    expectPlainFields(row, 9, 0);
}

TEST(AscFormat, AnyBitsHaveTheDigitsOfTheCLibrary)
{
    std::mt19937 random(3);
    for (int i = 0; i < 1000; ++i) {
        std::vector<float> row(100);
        for (float& value : row) {
            value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        }
        expectPlainFields(row, 1 + i % 50, i % 14);
    }
}

// --- ValueRange ------------------------------------------------------------------------------------------------------

TEST(FindExtremes, SmallestAndLargest)
{
    const grid::ValueRange found = grid::findExtremes(std::vector<float>{3, -9999, 12.5F, 4});
    EXPECT_TRUE(found.any);
    EXPECT_EQ(found.smallest, -9999);
    EXPECT_EQ(found.largest, 12.5F);
}

TEST(FindExtremes, NotANumberTakesNoPart)
{
    std::vector<float> cells(200, kNaN);
    cells[137] = 5;
    cells[3] = 7;
    const grid::ValueRange found = grid::findExtremes(cells);
    EXPECT_EQ(found.smallest, 5);
    EXPECT_EQ(found.largest, 7);
}

TEST(FindExtremes, NothingGivesZeros)
{
    for (const grid::ValueRange& found : {grid::findExtremes({}), grid::findExtremes(std::vector<float>(100, kNaN))}) {
        EXPECT_FALSE(found.any);
        EXPECT_EQ(found.smallest, 0);
        EXPECT_EQ(found.largest, 0);
    }
}

TEST(FindExtremes, InfinityIsAValue)
{
    const grid::ValueRange found = grid::findExtremes(std::vector<float>(100, kInfinity));
    EXPECT_TRUE(found.any);
    EXPECT_EQ(found.smallest, kInfinity);
    EXPECT_EQ(found.largest, kInfinity);
}

TEST(FindExtremes, BlocksGiveWhatTheWholeGives)
{
    std::mt19937 random(4);
    for (int i = 0; i < 500; ++i) {
        std::vector<float> cells(random() % 300);
        float smallest = kInfinity;
        float largest = -kInfinity;
        for (float& cell : cells) {
            cell = random() % 5 == 0 ? kNaN : static_cast<float>(random() % 100000) - 70000;
            if (!std::isnan(cell)) {
                smallest = std::min(smallest, cell);
                largest = std::max(largest, cell);
            }
        }
        const std::size_t block = 1 + random() % 100;
        grid::ValueRange found;
        for (std::size_t at = 0; at < cells.size(); at += block) {
            found = grid::findExtremes(std::span<const float>(cells).subspan(at, std::min(block, cells.size() - at)),
                                       found);
        }
        EXPECT_EQ(found.any, smallest <= largest);
        EXPECT_EQ(found.smallest, found.any ? smallest : 0);
        EXPECT_EQ(found.largest, found.any ? largest : 0);
    }
}

} // namespace
} // namespace gridforge
