// Whole runs of -nbc and -xs on grids that hold every odd number, against plain loops over their cells.
#include "support/network_layers.h"
#include "support/plain_sampling.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

using plain::OddTerrain;

constexpr float kNullOfGround = -1;
constexpr float kNullOfLand = -3;
constexpr float kNoLevel = -9999; // of a point that nothing was found for
constexpr int kFirstColumn = 4;
constexpr int kLastColumn = 49;

struct Section {
    std::string name;
    std::string method;
    std::string buffer;
};

const std::vector<Section> kSections = {{"point", "Max", ""},          {"across", "Mean", "Perp"},
                                        {"acrossMax", "Max", "Perp"},  {"acrossMin", "Min", "Perp"},
                                        {"around", "Mean", "Buffer"},  {"aroundMax", "Max", "Buffer"},
                                        {"aroundMin", "Min", "Buffer"}};

int rowOf(std::size_t section)
{
    return 5 + 5 * static_cast<int>(section);
}

// Their points are the vertices of their lines; cells within 2 of a point are looked at.
void giveSections(ToolRun& run)
{
    std::string objects;
    std::string records;
    for (std::size_t i = 0; i < kSections.size(); ++i) {
        const Section& section = kSections[i];
        objects += plain::lineAlong(rowOf(i), kFirstColumn, kLastColumn);
        records += "\"" + section.name + "\",-1,\"T\",\"T\",\"" + section.method + "\",\"" + section.buffer + "\",4\n";
    }
    giveLayer(run, "1d_cut_a", kCutColumns, objects, records);
}

// The cell of a point is the one that its place rounds to.
float levelAt(const OddTerrain& terrain, int column, int row, const Section& section)
{
    if (section.buffer.empty()) {
        const float value = terrain.at(row, column);
        return value == terrain.null() ? kNoLevel : value;
    }
    const auto cells = section.buffer == "Perp" ? terrain.upColumn(column, row - 3, row + 3)
                                                : terrain.inside(plain::circle(column + 0.3, row + 0.41, 4), 0);
    if (cells.empty()) {
        return kNoLevel;
    }
    return section.method == "Max"   ? plain::valueBeyond(cells, -99999, true)
           : section.method == "Min" ? plain::valueBeyond(cells, 99999, false)
                                     : plain::meanOf(cells);
}

// What is no number is 0, and what an integer of 32 bits does not hold its limit.
std::string materialText(float value, bool rounded)
{
    if (std::isnan(value)) {
        return "0";
    }
    const double whole = rounded ? std::round(static_cast<double>(value)) : std::trunc(static_cast<double>(value));
    return std::to_string(static_cast<long long>(std::clamp(whole, -2147483648.0, 2147483647.0)));
}

void expectTables(const ToolRun& run, const OddTerrain& ground, const OddTerrain& land, bool all, bool rounded)
{
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    for (std::size_t i = 0; i < kSections.size(); ++i) {
        Section section = kSections[i];
        if (!all) {
            section.buffer.clear(); // the point alone
        }
        std::string expected = "\"Chainage\",\"Z\",\"Mat\"\r\n";
        for (int column = kFirstColumn; column <= kLastColumn; ++column) {
            const float level = levelAt(ground, column, rowOf(i), section);
            const float material = levelAt(land, column, rowOf(i), {});
            expected += plain::realText(column - kFirstColumn, 0, 3) + "," +
                        plain::realText(static_cast<double>(level), 0, 3) + "," + materialText(material, rounded) +
                        "\r\n";
        }
        EXPECT_EQ(run.read(section.name + ".csv"), expected) << section.name;
    }
}

TEST(NetworkOddNumbers, GoThroughAControlFileAsThroughPlainLoops)
{
    ToolRun run("-b -nbc net.nbc");
    giveOddGrid(run, "ground", kNullOfGround, 25);
    giveOddGrid(run, "land", kNullOfLand, 26);
    giveSections(run);
    run.give("net.nbc", "Read GIS XS == 1d_cut_a.mif\nSet XS dx == 4\nRead Grid Z == ground.flt\n"
                        "Read Grid Mat == land.flt\n");
    run.start();
    expectTables(run, OddTerrain(kNullOfGround, 25), OddTerrain(kNullOfLand, 26), true, true);
}

TEST(NetworkOddNumbers, GoThroughSectionsAloneAsThroughPlainLoops)
{
    ToolRun run("-b -xs 1d_cut_a.mif -mat land.flt ground.flt");
    giveOddGrid(run, "ground", kNullOfGround, 27);
    giveOddGrid(run, "land", kNullOfLand, 28);
    giveSections(run);
    run.start();
    expectTables(run, OddTerrain(kNullOfGround, 27), OddTerrain(kNullOfLand, 28), false, false);
}

} // namespace
} // namespace gridforge::test
