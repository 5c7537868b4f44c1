#include "ops/xyz_parse.h"

#include "core/simd.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge {
namespace {

using testing::ElementsAre;

struct Point {
    double x = 0;
    double y = 0;
    float z = 0;
    bool good = false;

    std::vector<std::uint64_t> bits() const
    {
        return {std::bit_cast<std::uint64_t>(x), std::bit_cast<std::uint64_t>(y), std::bit_cast<std::uint32_t>(z)};
    }
};

Point pointOf(std::string_view line)
{
    Point point;
    point.good = ops::parsePoint(line, point.x, point.y, point.z);
    return point;
}

TEST(ParsePoint, TakesThreeFreeFormValuesAndLeavesTheRest)
{
    for (const std::string_view line :
         {"1.5 -2 3.25", "  1.5\t-2\t3.25  ", "1.5,-2,3.25", "1.5 , -2 ,3.25", "1.5 -2 3.25 7 'x", "1.5,-2,3.25,,,",
          "+1.5 -2. 3.25", ".15e1 -0.2D+1 325E-2", "1.5 -2 3.25 # remark"}) {
        const Point point = pointOf(line);
        EXPECT_TRUE(point.good) << line;
        EXPECT_EQ(point.x, 1.5) << line;
        EXPECT_EQ(point.y, -2) << line;
        EXPECT_EQ(point.z, 3.25F) << line;
    }
}

TEST(ParsePoint, AnEmptyValueStaysZero)
{
    EXPECT_EQ(pointOf(",5,6").bits(), (Point{0, 5, 6}.bits()));
    EXPECT_EQ(pointOf("4,,6").bits(), (Point{4, 0, 6}.bits()));
    EXPECT_TRUE(pointOf("4,,6").good);
    EXPECT_TRUE(pointOf("4,5,,7").good);
}

TEST(ParsePoint, RefusesWhatIsNoNumberOrMissing)
{
    for (const std::string_view line :
         {"", "1", "1 2", "1 2,", "x 2 3", "1 2 3x", "1 2 # 3", "1 2 '3'", "1/ 2 3", "2*1 3", "1 2 1e39", "1e999 2 3",
          "1 2 -", "1 2 .", "1 2 1.2.3", "1;2;3", "1 2 3\r4"}) {
        EXPECT_FALSE(pointOf(line).good) << line;
    }
}

TEST(ParsePoint, RoundsOnceToThePrecisionOfItsVariable)
{
    const Point point = pointOf("0.1 293000.123456789012345 16777217.0000000001");
    EXPECT_EQ(point.x, 0.1);
    EXPECT_EQ(point.y, 293000.123456789012345);
    EXPECT_EQ(point.z, 16777218.0F) << "a double in between would have lost the last digit, and given 16777216";
}

// --- The fast path ---------------------------------------------------------------------------------------------------

// A line as the file units bring it.
std::string_view lineWithoutEnd(std::string_view line)
{
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

std::vector<std::string_view> linesOf(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// Takes plain points as often as there are any, a group of lines at a time the other way in between, from windows of
// `windowSize` bytes; every point taken is compared with parsePoint. Gives the number of those.
std::size_t comparePoints(std::string_view text, std::size_t windowSize)
{
    std::size_t taken = 0;
    std::vector<std::string_view> lines = linesOf(text);
    std::vector<double> x(lines.size());
    std::vector<double> y(lines.size());
    std::vector<float> z(lines.size());
    std::size_t at = 0;
    for (std::size_t i = 0; i < lines.size();) {
        // A copy of its own, so that a look beyond the window is one beyond the heap block.
        const std::string_view rest = text.substr(at, windowSize);
        const std::vector<char> window(rest.begin(), rest.end());
        const ops::PlainPoints plain = ops::parsePlainPoints({window.data(), window.size()}, std::span(x).subspan(i),
                                                             std::span(y).subspan(i), std::span(z).subspan(i));
        EXPECT_EQ(plain.count % ops::kPointGroup, 0U);
        std::size_t bytes = 0;
        for (std::size_t k = i; k < i + plain.count; ++k) {
            const Point expected = pointOf(lineWithoutEnd(lines[k]));
            EXPECT_TRUE(expected.good) << "taken as plain: " << lines[k];
            EXPECT_EQ((Point{x[k], y[k], z[k]}.bits()), expected.bits()) << lines[k];
            bytes += lines[k].size() + 1;
        }
        EXPECT_EQ(plain.bytes, bytes);
        taken += plain.count;
        i += plain.count;
        at += plain.bytes;
        for (std::size_t k = 0; k < ops::kPointGroup && i < lines.size(); ++k, ++i) {
            at += lines[i].size() + 1;
        }
    }
    return taken;
}

class RandomLines {
public:
    explicit RandomLines(unsigned seed) : random_(seed) {}

    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_()) % limit; }

    // Digits with a point somewhere or nowhere, at most `most` characters.
    std::string plain(std::size_t most)
    {
        const std::size_t length = 1 + below(static_cast<std::uint32_t>(most));
        std::string text = below(3) == 0 ? "-" : "";
        while (text.size() < length) {
            text += static_cast<char>('0' + below(10));
        }
        if (below(4) != 0) {
            text.insert(text.begin() + (text[0] == '-' ? 1 : 0) + below(static_cast<std::uint32_t>(text.size())), '.');
        }
        return text.substr(0, most);
    }

    // The exact middle of two floats, or a hair beside it.
    std::string midpoint()
    {
        const auto low = static_cast<double>(1 + below(1U << 23)) + static_cast<double>(1U << 23);
        std::string text = std::to_string(static_cast<std::int64_t>(low)) + ".5";
        return text + (below(2) == 0 ? "" : "000001");
    }

    std::string odd()
    {
        const std::vector<std::string> kinds = {"1e3",
                                                "+4",
                                                "nan",
                                                "-Inf",
                                                "'7'",
                                                "x",
                                                "",
                                                "1.2.3",
                                                "-",
                                                ".",
                                                "5-6",
                                                "9007199254740993",
                                                "1d2",
                                                "\"a b\"",
                                                "1/",
                                                "--1",
                                                "1e39",
                                                "0x10",
                                                "12345678901234567",
                                                "#",
                                                "1\r2",
                                                "-.",
                                                "999999999999999.9",
                                                "9007199254740992",
                                                "-0",
                                                "0.0000000000001",
                                                "2*3"};
        return below(6) == 0 ? midpoint() : kinds[below(static_cast<std::uint32_t>(kinds.size()))];
    }

    std::string separator()
    {
        const std::vector<std::string> kinds = {" ", "  ", "\t", ",", ", ", " , ", ",,", "      "};
        return kinds[below(3) != 0 ? 0 : below(static_cast<std::uint32_t>(kinds.size()))];
    }

    // One line in `oddLines` may hold anything.
    std::string line(std::uint32_t oddLines)
    {
        const bool mayBeOdd = below(oddLines) == 0;
        std::string text = below(4) == 0 ? "  " : "";
        const std::uint32_t values = mayBeOdd ? below(5) : 3 + (below(8) == 0 ? 1U : 0U);
        for (std::uint32_t i = 0; i < values; ++i) {
            text += i == 0 ? "" : mayBeOdd ? separator() : (below(5) == 0 ? ", " : " ");
            text += mayBeOdd && below(3) == 0 ? odd() : plain(mayBeOdd ? 18 : 16);
        }
        if (mayBeOdd && below(8) == 0) {
            text.append(below(40), ' '); // up to and over the length of a block
        }
        return text + (below(3) == 0 ? "\r\n" : "\n");
    }

    std::string text(std::size_t lines, std::uint32_t oddLines)
    {
        std::string text;
        for (std::size_t i = 0; i < lines; ++i) {
            text += line(oddLines);
        }
        return text;
    }

private:
    std::mt19937 random_;
};

TEST(ParsePlainPoints, GivesTheBitsOfParsePoint)
{
    RandomLines random(1);
    std::size_t taken = 0;
    for (int i = 0; i < 40; ++i) {
        taken += comparePoints(random.text(1000, i % 2 == 0 ? 2 : 30), i % 4 == 0 ? 777 : std::string::npos);
    }
    if (hasAvx2()) {
        EXPECT_GT(taken, 8000U) << "the fast path is hardly taken";
    }
}

TEST(ParsePlainPoints, RoundsLikeTheStandardLibrary)
{
    RandomLines random(2);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        std::vector<std::string> values;
        for (std::size_t k = 0; k < 3 * ops::kPointGroup; ++k) {
            values.push_back(random.plain(15) + "0");
            text += values.back() + (k % 3 == 2 ? "\n" : " ");
        }
        text.append(64, ' ');
        std::vector<double> x(ops::kPointGroup);
        std::vector<double> y(ops::kPointGroup);
        std::vector<float> z(ops::kPointGroup);
        if (ops::parsePlainPoints(text, x, y, z).count == 0) {
            continue;
        }
        for (std::size_t k = 0; k < ops::kPointGroup; ++k) {
            EXPECT_EQ(x[k], std::strtod(values[3 * k].c_str(), nullptr)) << values[3 * k];
            EXPECT_EQ(y[k], std::strtod(values[3 * k + 1].c_str(), nullptr)) << values[3 * k + 1];
            EXPECT_EQ(z[k], std::strtof(values[3 * k + 2].c_str(), nullptr)) << values[3 * k + 2];
        }
    }
}

TEST(ParsePlainPoints, TakesWholeGroupsThatLieInTheWindow)
{
    const std::string group = "1 2 3\n4 5 6\r\n-7.5,8.25,9\n 10\t11\t12.5 rest\n";
    const std::string text = group + group + std::string(64, '1');
    std::vector<double> x(8);
    std::vector<double> y(8);
    std::vector<float> z(8);
    const ops::PlainPoints both = ops::parsePlainPoints(text, x, y, z);
    if (!hasAvx2()) {
        EXPECT_EQ(both.count, 0U);
        return;
    }
    EXPECT_EQ(both.count, 8U);
    EXPECT_EQ(both.bytes, 2 * group.size());
    EXPECT_THAT(x, ElementsAre(1, 4, -7.5, 10, 1, 4, -7.5, 10));
    EXPECT_THAT(y, ElementsAre(2, 5, 8.25, 11, 2, 5, 8.25, 11));
    EXPECT_THAT(z, ElementsAre(3, 6, 9, 12.5F, 3, 6, 9, 12.5F));

    EXPECT_EQ(ops::parsePlainPoints(text, std::span(x).first(7), std::span(y).first(7), std::span(z).first(7)).count,
              4U);
    EXPECT_EQ(ops::parsePlainPoints(text.substr(0, 2 * group.size()), x, y, z).count, 0U)
        << "no whole block behind the last";
    EXPECT_EQ(ops::parsePlainPoints("", x, y, z).count, 0U);
}

TEST(ParsePlainPoints, LeavesOddLinesToTheOtherWay)
{
    for (const std::string_view odd :
         {"1 2", "", "1,,2 3", ",1 2 3", "1 ,2 3", "1e3 2 3", "1 2 3\r4", "+1 2 3", "1 2 nan", "12345678901234567 2 3",
          "1 2 16777217", "1 2 3                                                               4"}) {
        const std::string text = "1 2 3\n1 2 3\n1 2 3\n" + std::string(odd) + "\n" + std::string(80, ' ');
        std::vector<double> x(4);
        std::vector<double> y(4);
        std::vector<float> z(4);
        EXPECT_EQ(ops::parsePlainPoints(text, x, y, z).count, 0U) << odd;
    }
}

// The points of the lines one by one, up to the first that is refused or has no end.
std::vector<Point> pointsOneByOne(std::string_view text, std::size_t& bytes)
{
    std::vector<Point> points;
    bytes = 0;
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n', bytes)) {
        std::string_view line = text.substr(bytes, end - bytes);
        line.remove_suffix(line.ends_with('\r') ? 1 : 0);
        const Point point = pointOf(line);
        if (!point.good) {
            break;
        }
        points.push_back(point);
        bytes = end + 1;
    }
    return points;
}

TEST(ParseLines, TakesLinesOfAnyFormUpToOneThatIsRefused)
{
    RandomLines random(4);
    std::size_t taken = 0;
    for (int i = 0; i < 60; ++i) {
        const std::string text = random.text(500, 300) + "1 2 3";
        std::size_t bytes = 0;
        const std::vector<Point> expected = pointsOneByOne(text, bytes);
        std::vector<double> x(501);
        std::vector<double> y(501);
        std::vector<float> z(501);
        const ops::PlainPoints found = ops::parseLines(text, 1000, x, y, z);
        ASSERT_EQ(found.bytes, bytes);
        ASSERT_EQ(found.count, expected.size());
        for (std::size_t k = 0; k < found.count; ++k) {
            ASSERT_EQ((Point{x[k], y[k], z[k]}.bits()), expected[k].bits()) << k;
        }
        taken += found.count;
    }
    EXPECT_GT(taken, 500U);
}

TEST(ParseLines, TakesNoMoreThanThereIsRoomFor)
{
    const std::string line = "1,2,3\n";
    for (std::size_t room = 0; room < 40; ++room) {
        std::string text;
        for (std::size_t i = 0; i < room; ++i) {
            text += i % 3 == 0 ? "1.5e0 2 3\n" : line;
        }
        const std::size_t bytes = text.size();
        text += line + line;
        std::vector<double> x(room + 1, 77);
        std::vector<double> y(room + 1, 77);
        std::vector<float> z(room + 1, 77);
        const ops::PlainPoints found =
            ops::parseLines(text, 1000, std::span(x).first(room), std::span(y).first(room), std::span(z).first(room));
        EXPECT_EQ(found.count, room);
        EXPECT_EQ(found.bytes, bytes) << room;
        EXPECT_EQ(x.back(), 77) << room;
        EXPECT_EQ(z.back(), 77) << room;
    }
}

TEST(ParseLines, ALineIsCutAtItsWidth)
{
    std::vector<double> x(2);
    std::vector<double> y(2);
    std::vector<float> z(2);
    EXPECT_EQ(ops::parseLines("1 2 345\r\n1 2 34567\n", 7, x, y, z).count, 2U);
    EXPECT_THAT(z, ElementsAre(345, 345));
}

TEST(CountLineEnds, CountsThemAll)
{
    EXPECT_EQ(ops::countLineEnds(""), 0U);
    EXPECT_EQ(ops::countLineEnds("a"), 0U);
    EXPECT_EQ(ops::countLineEnds("a\r\nb\n\nc"), 3U);
    EXPECT_EQ(ops::countLineEnds(std::string(1000, '\n')), 1000U);
    std::mt19937 random(3);
    for (std::size_t size = 0; size < 600; ++size) {
        std::string text;
        for (std::size_t i = 0; i < size; ++i) {
            text += random() % 3 == 0 ? '\n' : static_cast<char>(random());
        }
        EXPECT_EQ(ops::countLineEnds(text), static_cast<std::size_t>(std::ranges::count(text, '\n')));
    }
}

} // namespace
} // namespace gridforge
