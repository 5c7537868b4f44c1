// Sections across a real bayou, checked by a few plain lines over its cells.
#include "support/real_folder.h"
#include "support/tool_run.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

const RealFolder kReal("bayou");

double cellAt(const RealGrid& grid, double x, double y)
{
    const auto column = static_cast<std::size_t>(std::lround((x - grid.xll) / grid.cellsize));
    const auto row = static_cast<std::size_t>(std::lround((y - grid.yll) / grid.cellsize));
    return grid.rows.at(row - 1).at(column - 1);
}

struct Vertex {
    double x = 0;
    double y = 0;
};

// The polylines of a .mif.
std::vector<std::vector<Vertex>> readLines(const std::string& name)
{
    std::istringstream text(kReal.bytesOf(name));
    std::vector<std::vector<Vertex>> lines;
    for (std::string word; text >> word;) {
        if (word == "Pline") {
            std::size_t count = 0;
            text >> count;
            lines.emplace_back(count);
            for (Vertex& vertex : lines.back()) {
                text >> vertex.x >> vertex.y;
            }
        }
    }
    return lines;
}

struct Row {
    double chainage = 0;
    double z = 0;
};

std::vector<Row> readTable(const ToolRun& run, const std::string& name)
{
    std::string text = run.read(name);
    EXPECT_TRUE(text.starts_with("\"Chainage\",\"Z\"\r\n")) << name;
    std::ranges::replace(text, ',', ' ');
    std::istringstream rows(text.substr(text.find('\n') + 1));
    std::vector<Row> table;
    for (Row row; rows >> row.chainage >> row.z;) {
        table.push_back(row);
    }
    return table;
}

class RealNetwork : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(kReal.path() / "dem.asc")) {
            GTEST_SKIP() << "no real data";
        }
    }
};

TEST_P(RealNetwork, SectionsOfTheBayouHoldTheCellsAlongThem)
{
    const std::string kind = GetParam();
    ToolRun run("-b -nbc bayou.nbc");
    kReal.giveLayer(run, "branches");
    kReal.giveLayer(run, "sections");
    run.give("dem.asc", kReal.bytesOf("dem.asc"));
    run.give("bayou.nbc", "Read GIS Branch == branches" + kind + "\nRead GIS XS == sections" + kind +
                              "\nSet XS dx == 50\nRead Grid Z == dem.asc\nOutput Nwk == net" + kind +
                              "\nOutput XS == xs" + kind + "\n");
    run.start();
    ASSERT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_TRUE(run.says("Found 11 cross-sections."));

    const RealGrid ground = kReal.readGrid("dem.asc");
    const auto lines = readLines("sections.mif");
    ASSERT_EQ(lines.size(), 11U);
    constexpr double kDistance = 3; // of every section's record
    std::size_t updated = 0;
    for (std::size_t s = 0; s < lines.size(); ++s) {
        const std::string name = (s < 9 ? "xs_0" : "xs_") + std::to_string(s + 1) + ".csv";
        const auto table = readTable(run, name);
        std::size_t i = 0;
        double chainage = 0;
        for (std::size_t w = 1; w < lines[s].size(); ++w) {
            const Vertex& from = lines[s][w - 1];
            const Vertex& to = lines[s][w];
            const double length = std::hypot(to.x - from.x, to.y - from.y);
            const double steps = std::floor(length / kDistance) + 1;
            for (double k = 0; k <= steps; ++k, ++i) {
                ASSERT_LT(i, table.size());
                EXPECT_NEAR(table[i].chainage, chainage + length * k / steps, 0.0011) << name << " " << i;
                const double x = from.x + (to.x - from.x) * k / steps;
                const double y = from.y + (to.y - from.y) * k / steps;
                EXPECT_NEAR(table[i].z, cellAt(ground, x, y), 0.00051) << name << " " << i;
            }
            chainage += length;
        }
        EXPECT_EQ(i, table.size());
        updated += i;
    }
    EXPECT_TRUE(run.says("Updated " + std::to_string(updated) + " vertices."));
}

// The length of the network lines is that of the branch: sections cut it, but take nothing of it.
TEST_P(RealNetwork, TheNetworkIsAsLongAsTheBayou)
{
    ToolRun run("-b -nbc bayou.nbc");
    kReal.giveLayer(run, "branches");
    kReal.giveLayer(run, "sections");
    run.give("bayou.nbc", "Read GIS Branch == branches.mif\nRead GIS XS == sections.mif\nWrite XS == Off\n"
                          "Branch Bendiness == On\n");
    run.start();
    ASSERT_TRUE(run.reachedEnd()) << run.console();
    double expected = 0;
    const auto bayou = readLines("branches.mif").at(0);
    for (std::size_t v = 1; v < bayou.size(); ++v) {
        expected += std::hypot(bayou[v].x - bayou[v - 1].x, bayou[v].y - bayou[v - 1].y);
    }
    double actual = 0;
    std::size_t count = 0;
    std::istringstream records(run.read("1d_nwkbranches.mid"));
    for (std::string line; std::getline(records, line); ++count) {
        for (int field = 0; field < 20; ++field) {
            line.erase(0, line.find(',') + 1);
        }
        actual += std::stod(line);
    }
    EXPECT_GE(count, 3U);
    EXPECT_NEAR(actual, expected, 0.01);
}

INSTANTIATE_TEST_SUITE_P(Families, RealNetwork, testing::Values(".mif", ".shp"),
                         [](const auto& family) { return std::string(family.param).substr(1); });

} // namespace
} // namespace gridforge::test
