#include "ops/points_ahead.h"

#include "support/both_ways.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::ScratchFolder;

constexpr std::size_t kSide = 60;

// Points of a square lattice, with what else a line may have.
std::string latticePoints()
{
    const std::vector<std::string> rests = {"\n", "\r\n", " 7 rest of the line\n", "   \n", ",,\n"};
    std::string text;
    for (std::size_t i = 0; i < kSide * kSide; ++i) {
        const std::size_t at = i * 7 % (kSide * kSide); // in no order
        text += std::to_string(1000 + at % kSide) + ".0 " + std::to_string(2000 + at / kSide) + ' ' +
                std::to_string(static_cast<double>(at % 997) / 8) + rests[i % rests.size()];
    }
    return text;
}

TEST(PointsAhead, AreThoseOfTheFileReadLineByLine)
{
    const std::string text = latticePoints();
    std::string cut = text;
    cut.resize(cut.find_last_not_of(",\r\n ") + 1);
    const std::string wide = text + std::string(993, ' ') + "1 0 2345\n"; // cut at the width of a line
    for (const std::string& points : {text, cut, cut + '\r', wide, text + ",2001,5\n", text + "1e3 2000 1D1\n"}) {
        test::expectBothWaysTheSame({{"p.xyz", points}}, "-xyz p.xyz -out o.asc", false);
    }
}

void expectWay(run::Way way, const std::string& points)
{
    const std::size_t before = waysGone(way);
    const ScratchFolder folder;
    folder.give("p.xyz", points);
    const auto found = ops::pointsAhead((folder.path() / "p.xyz").string());
    EXPECT_EQ(found.has_value(), way == run::Way::ahead);
    EXPECT_EQ(waysGone(way), before + 1) << points.substr(0, 40);
}

TEST(PointsAhead, AreNoneWhereALineIsNoPoint)
{
    for (const std::string line : {"\n", "1 2\n", "1 2 x\n", "1 2 '3'\n", "1;2;3\n", "1 2", "x"}) {
        expectWay(run::Way::oddText, latticePoints() + line);
    }
    expectWay(run::Way::oddText, "\xEF\xBB\xBF"
                                 "1 2 3\n");
    expectWay(run::Way::ahead, latticePoints());
    expectWay(run::Way::ahead, "1 2 3");
    expectWay(run::Way::oddInput, "");
}

TEST(PointsAhead, AreNoneWhereTheFileIsMissing)
{
    const std::size_t before = waysGone(run::Way::oddInput);
    EXPECT_FALSE(ops::pointsAhead("/nowhere/p.xyz"));
    EXPECT_EQ(waysGone(run::Way::oddInput), before + 1);
}

} // namespace
} // namespace gridforge
