// Whole runs on grids that hold every odd number: not-a-numbers, infinities, denormals, negative zeros and the ends of single
// precision, against plain loops over the cells.
#include "support/consoles.h"
#include "support/odd_grids.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {
namespace {

constexpr float kNullOfFirst = -9999;
constexpr float kNullOfSecond = -1;

Values firstCells()
{
    return oddGrid(kNullOfFirst, 1);
}

Values secondCells()
{
    return oddGrid(kNullOfSecond, 2);
}

void giveOdd(ToolRun& run)
{
    giveOddGrid(run, "a", kNullOfFirst, 1);
    giveOddGrid(run, "b", kNullOfSecond, 2);
}

// Each cell from those of the two grids at its place.
Values cellByCell(const std::function<float(float, float)>& of)
{
    const Values a = firstCells();
    const Values b = secondCells();
    Values result(a.size());
    std::ranges::transform(a, b, result.begin(), of);
    return result;
}

float product(float a, float b)
{
    const volatile float rounded = a * b; // before anything is added
    return rounded;
}

float largerOf(float kept, float cell, float null)
{
    return cell != null && cell > kept ? cell : kept;
}

// Blocks of three, from the south-west corner; files hold the north row first.
Values resizedByThree(const std::function<float(const Values&)>& of)
{
    constexpr std::size_t kFactor = 3;
    const Values cells = firstCells();
    Values result;
    for (std::size_t top = (kOddRows + kFactor - 1) / kFactor; top-- > 0;) {
        for (std::size_t west = 0; west < kOddColumns; west += kFactor) {
            Values block;
            for (std::size_t y = top * kFactor; y < std::min(kOddRows, (top + 1) * kFactor); ++y) {
                for (std::size_t x = west; x < std::min(kOddColumns, west + kFactor); ++x) {
                    const float cell = cells[(kOddRows - 1 - y) * kOddColumns + x];
                    if (cell != kNullOfFirst) {
                        block.push_back(cell);
                    }
                }
            }
            result.push_back(of(block));
        }
    }
    return result;
}

float meanOf(const Values& block)
{
    double sum = 0;
    for (const float cell : block) {
        sum += static_cast<double>(cell);
    }
    return block.empty() ? kNullOfFirst : static_cast<float>(sum / static_cast<double>(block.size()));
}

float greatestOf(const Values& block)
{
    float kept = kNullOfFirst;
    for (const float cell : block) {
        kept = cell > kept ? cell : kept;
    }
    return kept;
}

float leastOf(const Values& block)
{
    constexpr float kStart = 100000; // a block of greater values is null
    float kept = kStart;
    for (const float cell : block) {
        kept = cell < kept ? cell : kept;
    }
    return kept == kStart ? kNullOfFirst : kept;
}

struct OddRun {
    std::string arguments;
    std::string output;
    std::function<Values()> expected;
};

void PrintTo(const OddRun& run, std::ostream* out)
{
    *out << run.arguments;
}

OddRun oddRun(const std::string& arguments, const std::string& output, std::function<float(float, float)> of)
{
    return {arguments, output, [of = std::move(of)] { return cellByCell(of); }};
}

class OddNumbers : public testing::TestWithParam<OddRun> {};

TEST_P(OddNumbers, GoThroughAsThroughAPlainLoop)
{
    ToolRun run(("-b " + GetParam().arguments).c_str());
    giveOdd(run);
    run.start();
    EXPECT_TRUE(run.says(kFinished)) << run.console();
    expectSameBits(valuesOf(run.read(GetParam().output)), GetParam().expected());
}

constexpr float kA = kNullOfFirst;
constexpr float kB = kNullOfSecond;

INSTANTIATE_TEST_SUITE_P(
    Operations, OddNumbers,
    testing::Values(
        oddRun("-max a.flt b.flt -out r", "r.flt",
               [](float a, float b) { return largerOf(largerOf(kA, a, kA), b, kB); }),
        oddRun("-max a.flt b.flt -out r", "r_src.flt",
               [](float a, float b) {
                   const float first = largerOf(kA, a, kA);
                   return b != kB && b > first ? 2.0F : a != kA && a > kA ? 1.0F : kA;
               }),
        oddRun("-min a.flt b.flt -out r", "r.flt",
               [](float a, float b) {
                   // Where no grid gave a value yet the null of the first stands, which the second takes for a value.
                   return b != kB && (a == kB || b < a) ? b : a;
               }),
        oddRun("-dif a.flt b.flt -out r", "r.flt", [](float a, float b) { return a != kA && b != kB ? a - b : kA; }),
        oddRun("-dif a.flt b.flt -out r", "r_wd.flt",
               [](float a, float b) { return a != kA && b == kB   ? 99.0F
                                             : a == kA && b != kB ? -99.0F
                                                                  : kA; }),
        oddRun("-dif -change a.flt b.flt -out r", "r.flt",
               [](float a, float b) {
                   return a == kA && b == kB ? kA : (a == kA ? 0.0F - b : b == kB ? a : a - b);
               }),
        oddRun("-cd0.5 a.flt -out r", "r.flt", [](float a, float) { return a >= 0.5F ? a : kA; }),
        oddRun("-cd0.5 a.flt b.flt -out r", "r.flt", [](float a, float b) { return a >= 0.5F && b != kB ? b : kA; }),
        oddRun("-trans_m3 -trans_c-1.5 a.flt -out r", "r.flt",
               [](float a, float) { return a == kA ? kA : product(a, 3) - 1.5F; }),
        oddRun("-multiply a.flt b.flt -out r", "r.flt",
               [](float a, float b) { return a != kA && b != kB ? a * b : kA; }),
        oddRun("-fe a.flt -out r", "r.flt",
               [](float a, float) { return a == kA || std::abs(a) < 0.0001F ? kA : 1.0F; }),
        oddRun("-fuzzy a.flt b.flt -out r", "r.flt",
               [](float a, float b) {
                   const int active = (a != kA ? 1 : 0) + (b != kA ? 1 : 0);
                   return active == 0 ? kA : static_cast<float>(active) / 2.0F;
               }),
        OddRun{"-resize3 a.flt -out r", "r.flt", [] { return resizedByThree(meanOf); }},
        OddRun{"-resize3 -rm_max a.flt -out r", "r.flt", [] { return resizedByThree(greatestOf); }},
        OddRun{"-resize3 -rm_min a.flt -out r", "r.flt", [] { return resizedByThree(leastOf); }}));

TEST(OddNumbersCli, AreCounted)
{
    for (const bool above : {false, true}) {
        ToolRun run(above ? "-b -count -cd0.5 a.flt" : "-b -count a.flt");
        giveOdd(run);
        run.start();
        const auto counts = [above](float cell) { return cell != kNullOfFirst && (!above || cell > 0.5F); };
        char count[16];
        std::snprintf(count, sizeof(count), "%14d", static_cast<int>(std::ranges::count_if(firstCells(), counts)));
        EXPECT_TRUE(run.says(std::string("Number of wet cells: ") + count)) << run.console();
    }
}

// The last line of a text grid.
std::string lastRow(const std::string& text)
{
    return text.substr(text.rfind('\n', text.size() - 2) + 1);
}

// Writes the cells as a text of one row, which is `row`, and reads it again.
Values throughText(const Values& cells, const std::string& row)
{
    ToolRun run("-b -conv odd.flt");
    run.give("odd.flt", bytesOf(cells));
    run.give("odd.hdr", hdr(static_cast<std::int64_t>(cells.size()), 1));
    run.start();
    const std::string text = run.read("odd.asc");
    EXPECT_EQ(lastRow(text), row + "\r\n");

    ToolRun back("-b -conv odd.asc");
    back.give("odd.asc", text);
    back.start();
    return valuesOf(back.read("odd.flt"));
}

TEST(OddNumbersCli, BecomeTextAsPrintfWritesThemAndComeBack)
{
    const Values cells = {-0.0F,    0.0F,        1.0e-40F, -1.0e-40F, 1.17549435e-38F,
                          -0.0004F, 0.0005F,     -0.0005F, 0.0015F,   1.0e18F,
                          -9.9e17F, 16777216.0F, 0.1F,     -9999.0F,  3.0e17F};
    // 1e18 is 999999984306749440. in single precision: 18 digits and a point, 3 decimals, 2 more.
    constexpr int kWidth = 19 + 3 + 2;
    std::string row;
    Values expected;
    for (const float cell : cells) {
        char field[64];
        std::snprintf(field, sizeof(field), "%*.3f", kWidth, static_cast<double>(cell));
        row += field;
        expected.push_back(std::stof(field));
    }
    EXPECT_EQ(bitsOf(throughText(cells, row)), bitsOf(expected));
}

TEST(OddNumbersCli, ThatHaveNoDigitsAreWordsAndComeBack)
{
    // As wide as `Infinity`, 3 and 2 more.
    const Values cells = {kInfinity, -kInfinity, kNaN, 1.5F, -0.0F};
    EXPECT_EQ(bitsOf(throughText(cells, "     Infinity"
                                        "    -Infinity"
                                        "          NaN"
                                        "        1.500"
                                        "       -0.000")),
              bitsOf(cells));
}

TEST(OddNumbersCli, OfMoreDigitsThanAFieldAreStars)
{
    // A field of 20 has no room for 39 digits: all of it is stars, and with 3 decimals and 2 more so are 25 characters a cell.
    ToolRun run("-b -conv odd.flt");
    run.give("odd.flt", bytesOf({3.4e38F, -3.4e38F, 1, kNaN}));
    run.give("odd.hdr", hdr(4, 1));
    run.start();
    EXPECT_TRUE(run.says(kFinished)) << run.console();
    EXPECT_EQ(lastRow(run.read("odd.asc")),
              std::string(50, '*') + std::string(20, ' ') + "1.000" + std::string(22, ' ') + "NaN\r\n");
}

} // namespace
} // namespace gridforge::test
