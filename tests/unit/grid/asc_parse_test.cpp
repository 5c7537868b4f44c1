#include "grid/asc_parse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge {
namespace {

using testing::ElementsAre;

constexpr float kUntouched = 77;
constexpr std::size_t kWhole = std::numeric_limits<std::size_t>::max();

// Rows of `columns` cells out of `text`, which arrives in pieces: at first one that ends at `split`, then such of
// `piece` bytes.
struct ReadRows {
    std::vector<std::vector<float>> rows;
    bool failed = false;
    std::size_t rest = 0; // bytes behind the last row
};

ReadRows readRows(std::string_view text, std::size_t columns, std::size_t rowCount, std::size_t piece = kWhole,
                  std::size_t split = 0)
{
    ReadRows result;
    std::size_t from = 0;
    std::size_t to = std::min(text.size(), split != 0 ? split : piece);
    while (result.rows.size() < rowCount) {
        std::vector<float> row(columns, kUntouched);
        grid::AscRowState state;
        for (;;) {
            // A copy of its own, so that a look beyond the window is one beyond the heap block.
            const std::vector<char> window(text.begin() + static_cast<std::ptrdiff_t>(from),
                                           text.begin() + static_cast<std::ptrdiff_t>(to));
            std::size_t consumed = 0;
            const grid::AscRow progress =
                grid::parseAscRow(state, {window.data(), window.size()}, to == text.size(), consumed, row);
            if (progress == grid::AscRow::failure) {
                result.failed = true;
                return result;
            }
            EXPECT_LE(consumed, window.size());
            from += consumed;
            if (progress == grid::AscRow::done) {
                break;
            }
            EXPECT_LT(to, text.size()) << "asks for more than there is";
            if (to == text.size()) {
                result.failed = true;
                return result;
            }
            to += std::min(text.size() - to, piece);
        }
        result.rows.push_back(row);
    }
    result.rest = text.size() - from;
    return result;
}

std::vector<float> readOne(std::string_view text, std::size_t columns)
{
    const ReadRows result = readRows(text, columns, 1);
    return result.failed ? std::vector<float>{} : result.rows[0];
}

bool refused(std::string_view text, std::size_t columns)
{
    return readRows(text, columns, 1).failed;
}

std::uint32_t bits(float value)
{
    return std::bit_cast<std::uint32_t>(value);
}

// The token as the standard library reads it, once; the plus is ours.
float standardValue(std::string_view token)
{
    float value = 0;
    token.remove_prefix(token.starts_with('+') ? 1 : 0);
    const auto result = std::from_chars(token.data(), token.data() + token.size(), value);
    EXPECT_EQ(result.ec, std::errc{}) << token;
    EXPECT_EQ(result.ptr, token.data() + token.size()) << token;
    return value;
}

// Tokens in fixed width, as one row, and each again as a row of its own; both must give the bits of the standard
// library.
void expectStandardBits(const std::vector<std::string>& tokens, std::string_view separator = " ")
{
    std::string text;
    for (const std::string& token : tokens) {
        text.append(token).append(separator);
    }
    text += '\n';
    const std::vector<float> row = readOne(text, tokens.size());
    ASSERT_EQ(row.size(), tokens.size());
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        ASSERT_EQ(bits(row[i]), bits(standardValue(tokens[i]))) << tokens[i];
    }
}

std::string fixed(double value, int decimals)
{
    std::array<char, 400> text;
    return {text.data(), static_cast<std::size_t>(std::snprintf(text.data(), text.size(), "%.*f", decimals, value))};
}

// --- Separators and lines --------------------------------------------------------------------------------------------

TEST(AscParse, ReadsTheWritersOwnFormat)
{
    EXPECT_THAT(readOne("    12.500 -9999.000    12.250\r\n", 3), ElementsAre(12.5F, -9999.0F, 12.25F));
}

TEST(AscParse, NullReadsAlikeWithAndWithoutDecimals)
{
    EXPECT_THAT(readOne("-9999 -9999.000 -9999. -9.999e3", 4), ElementsAre(-9999.0F, -9999.0F, -9999.0F, -9999.0F));
}

TEST(AscParse, BlanksTabsAndCommasSeparate)
{
    EXPECT_THAT(readOne("1 2\t3,4  \t 5 , 6\t,7\n", 7), ElementsAre(1, 2, 3, 4, 5, 6, 7));
}

TEST(AscParse, TwoCommasLeaveTheCellAsItWas)
{
    EXPECT_THAT(readOne("1,,3 , ,5\n", 5), ElementsAre(1, kUntouched, 3, kUntouched, 5));
}

TEST(AscParse, LeadingCommaIsAnEmptyFirstValue)
{
    EXPECT_THAT(readOne(",2\n", 2), ElementsAre(kUntouched, 2));
    EXPECT_THAT(readOne("  ,,3\n", 3), ElementsAre(kUntouched, kUntouched, 3));
}

TEST(AscParse, TrailingCommaBelongsToTheValueBeforeIt)
{
    EXPECT_THAT(readOne("1,\n2,\n", 2), ElementsAre(1, 2));
    EXPECT_THAT(readOne("1 , \n2\n", 2), ElementsAre(1, 2));
}

TEST(AscParse, CommaAtTheHeadOfALineIsAnEmptyValueAlsoBehindAValueOnTheLineBefore)
{
    EXPECT_THAT(readOne("1\n,3\n", 3), ElementsAre(1, kUntouched, 3));
    EXPECT_THAT(readOne("1,\n,3\n", 3), ElementsAre(1, kUntouched, 3));
}

TEST(AscParse, EmptyLastValueFillsTheRow)
{
    const ReadRows result = readRows("1,,\n2,3\n", 2, 2);
    ASSERT_FALSE(result.failed);
    EXPECT_THAT(result.rows[0], ElementsAre(1, kUntouched));
    EXPECT_THAT(result.rows[1], ElementsAre(2, 3));
}

TEST(AscParse, RowRunsOverLinesAndEmptyLinesArePassedOver)
{
    EXPECT_THAT(readOne("\n1 2\n\r\n   \n3\r\n4\n", 4), ElementsAre(1, 2, 3, 4));
}

TEST(AscParse, RestOfTheLastLineIsDroppedWhateverItHolds)
{
    const ReadRows result = readRows("1 2 3 four ,, 5\n6 7\r\n8\n9 10 rest", 2, 3);
    ASSERT_FALSE(result.failed);
    EXPECT_THAT(result.rows, ElementsAre(ElementsAre(1, 2), ElementsAre(6, 7), ElementsAre(8, 9)));
    EXPECT_EQ(result.rest, 0U);
}

TEST(AscParse, LineEndsMayBeMixedAndTheLastMayBeMissing)
{
    const ReadRows result = readRows("1 2\r\n3 4\n5 6", 2, 3);
    ASSERT_FALSE(result.failed);
    EXPECT_THAT(result.rows, ElementsAre(ElementsAre(1, 2), ElementsAre(3, 4), ElementsAre(5, 6)));
}

TEST(AscParse, LinesBehindTheRowAreLeft)
{
    EXPECT_EQ(readRows("1 2\nnext\n", 2, 1).rest, 5U);
}

TEST(AscParse, TextThatEndsEarlyIsRefused)
{
    EXPECT_TRUE(refused("", 1));
    EXPECT_TRUE(refused("\n\n  \n", 1));
    EXPECT_TRUE(refused("1 2\n3", 4));
    EXPECT_TRUE(refused("1,2,", 3));
    EXPECT_TRUE(readRows("1 2 3 4\n", 2, 2).failed); // all on one line: its rest is dropped
}

TEST(AscParse, LoneLineFeedsAndCarriageReturnsFillNoCell)
{
    EXPECT_TRUE(refused("\r\n\r\n\n", 1));
    EXPECT_TRUE(refused("1,\r\n", 2));
}

// --- Values ----------------------------------------------------------------------------------------------------------

TEST(AscParse, ForeignTextIsRefused)
{
    for (const char* token :
         {"x",    "1.5x", "12/3", "/",     "2*5",  "'5'",   "\"5\"",   "0x10", "1.5+3",   "1-2", "--1",
          "+-1",  ".",    "-",    "+",     "-.",   "1.2.3", "..",      "e5",   ".e5",     "1e",  "1e+",
          "1e5.", "1f",   "1;2",  "1_000", "nanx", "in",    "1.#QNAN", "1d",   "\xC3\xA9"}) {
        const std::string text = token;
        EXPECT_TRUE(refused(text + "\n", 1)) << token;
        EXPECT_TRUE(refused(std::string(40, ' ') + text + std::string(40, ' ') + "\n", 1)) << token;
    }
    EXPECT_TRUE(refused({"1\0\n", 3}, 1));
    EXPECT_TRUE(refused({"                1\0 5                                                          \n", 79}, 2));
}

TEST(AscParse, ExponentsOfEveryLetter)
{
    EXPECT_THAT(readOne("1e3 1.5E+2 25D-1 -.5d1 5.e0 1e-0 1.25e00001\n", 7),
                ElementsAre(1000, 150, 2.5, -5, 5, 1, 12.5));
}

TEST(AscParse, NotANumberAndInfinityInAnyCase)
{
    const std::vector<float> row = readOne("NaN nan -Inf Infinity +INFINITY -nAn\n", 6);
    ASSERT_EQ(row.size(), 6U);
    EXPECT_TRUE(std::isnan(row[0]));
    EXPECT_TRUE(std::isnan(row[1]));
    EXPECT_EQ(row[2], -std::numeric_limits<float>::infinity());
    EXPECT_EQ(row[3], std::numeric_limits<float>::infinity());
    EXPECT_EQ(row[4], std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(row[5]));
}

TEST(AscParse, TooLargeIsRefusedAndTooSmallIsTheNearest)
{
    EXPECT_TRUE(refused("3.5e38\n", 1));
    EXPECT_TRUE(refused("1e999999999999\n", 1));
    EXPECT_TRUE(refused("400000000000000000000000000000000000000\n", 1));
    EXPECT_THAT(readOne("3.4e38\n", 1), ElementsAre(3.4e38F));
    EXPECT_THAT(readOne("1e-400 1e-45 1e-40\n", 3), ElementsAre(0, std::numeric_limits<float>::denorm_min(), 1e-40F));
}

TEST(AscParse, SignOfNothingIsKept)
{
    const std::vector<float> row = readOne("                   -0 -0.000 0 -0e5 -.0 +0.0 -0.00000000000000000000\n", 7);
    ASSERT_EQ(row.size(), 7U);
    const std::vector<bool> negative = {true, true, false, true, true, false, true};
    for (std::size_t i = 0; i < row.size(); ++i) {
        EXPECT_EQ(bits(row[i]), negative[i] ? 0x80000000U : 0U) << i;
    }
}

TEST(AscParse, LongValues)
{
    const std::string zeros(300, '0');
    const std::string text = zeros + "12.5" + zeros + " -" + zeros + "." + zeros + "1 1" + zeros + "e-300\n";
    EXPECT_THAT(readOne(text, 3), ElementsAre(12.5, 0, 1));
}

// --- The bits of the standard library --------------------------------------------------------------------------------

TEST(AscParse, PlainDecimalsHaveTheBitsOfTheStandardLibrary)
{
    std::mt19937_64 random(1);
    std::vector<std::string> tokens;
    for (int i = 0; i < 400000; ++i) {
        const int decimals = static_cast<int>(random() % 8);
        const double scale = std::pow(10.0, static_cast<double>(random() % 9));
        const double value = (static_cast<double>(random()) / 1.8446744073709552e19 - 0.5) * scale;
        tokens.push_back(fixed(value, decimals));
    }
    expectStandardBits(tokens);
    expectStandardBits(tokens, ",");
    expectStandardBits(tokens, "   \t");
    expectStandardBits(tokens, "\r\n");
}

TEST(AscParse, DigitsWithThePointAnywhereHaveTheBitsOfTheStandardLibrary)
{
    std::mt19937_64 random(2);
    std::vector<std::string> tokens;
    for (int i = 0; i < 400000; ++i) {
        std::string token;
        const std::size_t length = 1 + random() % 24;
        for (std::size_t k = 0; k < length; ++k) {
            token += static_cast<char>('0' + random() % 10);
        }
        if (random() % 8 != 0) {
            token.insert(random() % (length + 1), ".");
        }
        if (random() % 8 == 0) {
            token += (random() % 2 ? "e" : "E") + std::to_string(static_cast<int>(random() % 40) - 25);
        }
        static const std::array<const char*, 4> kSigns = {"", "", "-", "+"};
        tokens.push_back(kSigns[random() % 4] + token);
    }
    expectStandardBits(tokens);
}

// Doubles hold every midpoint of two floats, so "%.*f" tells one exactly. The text a digit above, below and at it must
// go up, down and to even; reading it as a double first would make ties of the first two.
TEST(AscParse, TextsAtMidpointsOfFloatsAreRoundedOnce)
{
    std::mt19937_64 random(3);
    std::vector<std::string> tokens;
    for (int i = 0; i < 100000; ++i) {
        const int exponent = static_cast<int>(random() % 44) - 14;
        const auto mantissa = static_cast<double>((1U << 24) | (random() & 0xFFFFFF));
        const double midpoint = std::ldexp(2 * mantissa + 1, exponent - 25);
        const std::string exact = fixed(midpoint, std::max(0, 25 - exponent));
        tokens.push_back(exact);
        tokens.push_back(exact + (exact.find('.') == std::string::npos ? ".0000000000000001" : "0000000000000001"));
        std::string below = exact;
        below.back() = static_cast<char>(below.back() - 1); // ends in 5, or is an odd integer
        if (below.back() >= '0') {
            tokens.push_back(below + (exact.find('.') == std::string::npos ? ".9999999999999999" : "9999999999999999"));
        }
        tokens.push_back(fixed(midpoint, static_cast<int>(random() % 10)));
    }
    expectStandardBits(tokens);
}

TEST(AscParse, ShortMidpointsGoToEven)
{
    // 2^24 + 1 and 2^24 + 3 lie between floats; so do quarters above 2^22.
    EXPECT_THAT(readOne("16777217 16777219 4194304.25 4194304.75 -16777217.0 16777217.0000000001\n", 6),
                ElementsAre(16777216.0F, 16777220.0F, 4194304.0F, 4194305.0F, -16777216.0F, 16777218.0F));
}

// --- Values in columns -----------------------------------------------------------------------------------------------

// The values of the text one by one, without regard to where they stand. None if one of the first `columns` is refused.
std::vector<float> valuesOneByOne(std::string_view text, std::size_t columns)
{
    constexpr std::string_view kSeparators = " \t\r\n";
    std::vector<float> row;
    while (row.size() < columns) {
        text.remove_prefix(std::min(text.find_first_not_of(kSeparators), text.size()));
        const std::string_view token = text.substr(0, text.find_first_of(kSeparators));
        float cell = 0;
        if (token.empty() || !grid::parseAscCell(token, cell)) {
            return {};
        }
        row.push_back(cell);
        text.remove_prefix(token.size());
    }
    return row;
}

// Rows of values of any size and sign in fields of `width`, some of them too long for it.
std::string columnText(std::size_t width, int decimals, std::size_t values, std::mt19937& random)
{
    std::string text;
    for (std::size_t i = 0; i < values; ++i) {
        const double scale = std::pow(10.0, static_cast<double>(random() % (width + 1)) - decimals);
        const std::string value = fixed((static_cast<double>(random()) / 4.0e9 - 0.3) * scale, decimals);
        text.append(width - std::min(width, value.size()), ' ').append(value);
        text += value.size() >= width ? " " : "";
    }
    return text;
}

std::vector<std::uint32_t> allBits(const std::vector<float>& values)
{
    std::vector<std::uint32_t> all;
    std::ranges::transform(values, std::back_inserter(all), bits);
    return all;
}

TEST(AscParse, ValuesInColumnsOfAnyWidth)
{
    std::mt19937 random(11);
    for (std::size_t width = 2; width <= 20; ++width) {
        for (int decimals = 0; decimals < static_cast<int>(width); ++decimals) {
            const std::string text = columnText(width, decimals, 300, random) + "\n";
            ASSERT_EQ(allBits(readOne(text, 300)), allBits(valuesOneByOne(text, 300))) << text;
        }
    }
}

TEST(AscParse, AnOddCharacterInAColumnIsReadLikeAnywhere)
{
    constexpr std::size_t kValues = 33;
    std::mt19937 random(12);
    for (const std::size_t width : {4U, 7U, 10U, 16U}) {
        for (const int decimals : {0, 1, 3}) {
            std::string sound;
            for (std::size_t i = 0; i < kValues; ++i) {
                const std::string value = fixed(static_cast<double>(random() % 1000) / 100 - 0.5, decimals);
                sound.append(width - std::min(width - 1, value.size()), ' ').append(value.substr(0, width - 1));
            }
            for (std::size_t at = 3 * width; at < sound.size(); ++at) {
                for (const char odd : {' ', '0', '.', '-', '+', 'e', 'x', '/', ':', '\t', '\n', '\0'}) {
                    std::string text = sound + " 7 7 7\n";
                    text[at] = odd;
                    ASSERT_EQ(allBits(readOne(text, kValues)), allBits(valuesOneByOne(text, kValues))) << text;
                }
            }
        }
    }
}

TEST(AscParse, AnEmptyValueAfterColumnsLeavesItsCell)
{
    const std::string text =
        "   1.5   2.5   3.5   4.5   5.5   6.5   7.5   8.5   9.5,,   1.5   2.5   3.5   4.5   5.5   6.5   7.5\n";
    EXPECT_THAT(readOne(text, 17), ElementsAre(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5, kUntouched, 1.5, 2.5, 3.5,
                                               4.5, 5.5, 6.5, 7.5));
}

// --- Windows ---------------------------------------------------------------------------------------------------------

void expectSameInPieces(const std::string& text, std::size_t columns, std::size_t rows)
{
    const ReadRows whole = readRows(text, columns, rows);
    const auto same = [&](const ReadRows& pieces, const std::string& how) {
        ASSERT_EQ(pieces.failed, whole.failed) << how << " of " << text;
        ASSERT_EQ(pieces.rows, whole.rows) << how << " of " << text;
        ASSERT_EQ(pieces.rest, whole.rest) << how << " of " << text;
    };
    for (std::size_t split = 1; split < text.size(); ++split) {
        same(readRows(text, columns, rows, kWhole, split), "split at " + std::to_string(split));
    }
    for (const std::size_t piece : {std::size_t{1}, std::size_t{2}, std::size_t{7}, std::size_t{63}, std::size_t{65}}) {
        same(readRows(text, columns, rows, piece), "pieces of " + std::to_string(piece));
    }
}

TEST(AscParse, PiecesGiveWhatTheWholeGives)
{
    expectSameInPieces("    12.500 -9999.000    12.250\r\n     1.000     2.000     3.000\r\n", 3, 2);
    expectSameInPieces("1,,3 , ,5\n,2,\r\n3,4,\n,\n , rest\n6 7 8 9 10 11", 5, 3);
    expectSameInPieces("1 2 three\n", 3, 1);
    expectSameInPieces("1 2 3\n4 5", 3, 2);
    std::string wide;
    for (int i = 0; i < 40; ++i) {
        wide += fixed(i * 1.25 - 20, i % 12) + (i % 5 == 0 ? " , " : i % 7 == 0 ? "\r\n" : ",,");
    }
    expectSameInPieces(wide + "\n1 2 3\n", 60, 1);
    expectSameInPieces(wide + "\n1 2 3\n", 3, 4);
}

TEST(AscParse, WindowWithoutAnEndToItsValueIsHandedBack)
{
    std::vector<float> row(1);
    grid::AscRowState state;
    std::size_t consumed = 99;
    EXPECT_EQ(grid::parseAscRow(state, "  123", false, consumed, row), grid::AscRow::more);
    EXPECT_EQ(consumed, 2U);
    EXPECT_EQ(grid::parseAscRow(state, "1234", false, consumed, row), grid::AscRow::more);
    EXPECT_EQ(consumed, 0U);
    EXPECT_EQ(grid::parseAscRow(state, "12345", true, consumed, row), grid::AscRow::done);
    EXPECT_EQ(consumed, 5U);
    EXPECT_EQ(row[0], 12345);
}

TEST(AscParse, DroppedRestOfAlineMayBeOfAnyLength)
{
    std::vector<float> row(1);
    grid::AscRowState state;
    std::size_t consumed = 0;
    EXPECT_EQ(grid::parseAscRow(state, "5 6", false, consumed, row), grid::AscRow::more);
    EXPECT_EQ(consumed, 3U);
    EXPECT_EQ(grid::parseAscRow(state, std::string(1000, '7'), false, consumed, row), grid::AscRow::more);
    EXPECT_EQ(consumed, 1000U);
    EXPECT_EQ(grid::parseAscRow(state, "8\n9", false, consumed, row), grid::AscRow::done);
    EXPECT_EQ(consumed, 2U);
    EXPECT_EQ(row[0], 5);
}

// --- Hostile text ----------------------------------------------------------------------------------------------------

// A plain reading of the rules, character by character, for texts of the characters below.
ReadRows plainRows(const std::string& text, std::size_t columns, std::size_t rowCount)
{
    ReadRows result;
    std::size_t at = 0;
    while (result.rows.size() < rowCount) {
        std::vector<float> row(columns, kUntouched);
        std::size_t filled = 0;
        bool afterValue = false;
        while (filled < columns) {
            if (at == text.size()) {
                result.failed = true;
                return result;
            }
            const char c = text[at];
            const std::size_t end = std::min(text.find_first_of(" \t\r\n,", at), text.size());
            if (end > at) {
                if (text.substr(at, end - at).find_first_not_of("0123456789") != std::string::npos) {
                    result.failed = true;
                    return result;
                }
                row[filled++] = standardValue(text.substr(at, end - at));
                afterValue = true;
                at = end;
                continue;
            }
            if (c == ',' && !afterValue) {
                ++filled;
            }
            afterValue = afterValue && c != ',' && c != '\n';
            ++at;
        }
        at = std::min(text.find('\n', at), text.size() - 1) + 1;
        result.rows.push_back(row);
    }
    result.rest = text.size() - at;
    return result;
}

TEST(AscParse, RandomSeparatorsGiveWhatThePlainReadingGives)
{
    std::mt19937 random(4);
    int good = 0;
    for (int i = 0; i < 60000; ++i) {
        std::string text;
        static const std::string kCharacters = "0123456789  ,,\t\r\n ,";
        const bool sparse = i % 2 == 0;
        const std::size_t length = random() % 300;
        std::size_t digits = 0; // held within the range of a float
        for (std::size_t k = 0; k < length; ++k) {
            const bool digit = sparse && random() % 3 != 0;
            text += digits == 30 ? ' '
                    : digit      ? static_cast<char>('0' + random() % 10)
                                 : kCharacters[random() % kCharacters.size()];
            digits = text.back() >= '0' && text.back() <= '9' ? digits + 1 : 0;
        }
        if (random() % 10 == 0 && !text.empty()) {
            text[random() % text.size()] = 'x';
        }
        const std::size_t columns = 1 + random() % 20;
        const ReadRows plain = plainRows(text, columns, 3);
        const ReadRows fast = readRows(text, columns, 3, i % 3 == 0 ? 1 + random() % 100 : kWhole);
        ASSERT_EQ(fast.failed, plain.failed) << text;
        ASSERT_EQ(fast.rows, plain.rows) << text;
        ASSERT_EQ(fast.rest, plain.rest) << text;
        good += plain.failed ? 0 : 1;
    }
    EXPECT_GT(good, 10000);
}

TEST(AscParse, RandomBytesNeverCrash)
{
    std::mt19937 random(5);
    static const std::string kLikely = "0123456789012345678901234567890123456789....--++eEdD,,  \t\r\nNaNInf*/'\"";
    int failures = 0;
    for (int i = 0; i < 60000; ++i) {
        std::string text;
        const std::size_t length = random() % 400;
        const unsigned strange = i % 4 == 0 ? 2 : 50;
        for (std::size_t k = 0; k < length; ++k) {
            text += random() % strange == 0 ? static_cast<char>(random() % 256) : kLikely[random() % kLikely.size()];
        }
        const std::size_t columns = 1 + random() % 30;
        failures += readRows(text, columns, 2, 1 + random() % 200).failed ? 1 : 0;
    }
    EXPECT_GT(failures, 0);
}

} // namespace
} // namespace gridforge
