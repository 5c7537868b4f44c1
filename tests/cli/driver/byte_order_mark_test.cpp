// Text inputs with a UTF-8 byte order mark, which some editors put in front, do the same as those without.
#include "support/consoles.h"
#include "support/damages_files.h"
#include "support/layer_files.h"
#include "support/network_layers.h"
#include "support/rainfall_files.h"
#include "support/shp_bytes.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

constexpr std::string_view kMark = "\xEF\xBB\xBF";

using Files = std::map<std::string, std::string>;

struct Left {
    std::vector<std::string> console;
    Files files;
};

Left runOver(const std::string& arguments, const Files& texts, const Files& others, std::string_view mark)
{
    ToolRun run(("-b " + arguments).c_str());
    for (const auto& [name, text] : texts) {
        run.give(name, std::string(mark) + text);
    }
    for (const auto& [name, bytes] : others) {
        run.give(name, bytes);
    }
    run.start();
    Left left;
    left.console = run.consoleLines();
    for (const std::string& name : run.changedFiles()) {
        // The date of a table is that of the run.
        std::string bytes = run.read(name);
        left.files[name] = name.ends_with(".dbf") ? bytes.substr(4) : bytes;
    }
    return left;
}

// Both runs finish, and say and leave the same.
void expectNoDifference(const std::string& arguments, const Files& texts, const Files& others = {})
{
    SCOPED_TRACE(arguments);
    const Left plain = runOver(arguments, texts, others, "");
    const Left marked = runOver(arguments, texts, others, kMark);
    EXPECT_THAT(plain.console, testing::Contains(kFinished));
    EXPECT_FALSE(plain.files.empty());
    EXPECT_EQ(marked.console, plain.console);
    EXPECT_EQ(marked.files, plain.files);
}

const std::string kGrid = ascGrid(rowColumnCells());
const std::string kProjection = "PROJCS[\"Test\"]\n";

TEST(ByteOrderMarks, OfGridsAndTheirProjections)
{
    expectNoDifference("-conv a.asc b.flt",
                       {{"a.asc", kGrid}, {"a.prj", kProjection}, {"b.hdr", hdr(rowColumnCells())}},
                       {{"b.flt", fltCells(rowColumnCells())}});
    expectNoDifference("-max a.asc b.asc", {{"a.asc", kGrid}, {"b.asc", kGrid}});
}

TEST(ByteOrderMarks, OfTablesAndPointFiles)
{
    expectNoDifference("-classify c.csv a.asc -grc", {{"c.csv", "Limit,Name\n20,low\n50,high\n"}, {"a.asc", kGrid}});
    expectNoDifference("-histogram c.csv a.asc", {{"c.csv", "Limit,Name\n20,low\n50,high\n"}, {"a.asc", kGrid}});
    expectNoDifference("-xyz p.xyz", {{"p.xyz", "0 0 1\n1 0 2\n0 1 3\n1 1 4\n"}});
}

TEST(ByteOrderMarks, OfLayers)
{
    const Files marks = {{"p.mif", mifHeader({"Obs Float", "Mark Char(20)"}) + "Point 4.3 4.4\n"}, {"p.mid", "40,a\n"}};
    Files files = {{"c.csv", "heading\n0,1,2,3\n9,4,5,6\n"}, {"dem.asc", kGrid}};
    files.insert(marks.begin(), marks.end());
    expectNoDifference("-cp p.mif -cpsd4 -config c.csv dem.asc", files);

    // The .mif may begin with the line of the columns, and the .mid holds one value.
    expectNoDifference("-trim t.mif dem.asc",
                       {{"t.mif", "Columns 1\n  Name Char(9)\nCoordSys NonEarth\nData\n" + rectangle(2, 2, 6, 6)},
                        {"t.mid", "part\n"},
                        {"dem.asc", kGrid}});
    expectNoDifference("-lp l.shp -lpmd3 -cpsd2 -check dem.asc", {{"l.prj", kProjection}, {"dem.asc", kGrid}},
                       {{"l.shp", shpBytes(3, {partsRecord(3, {0}, {2, 5, 8, 5})})},
                        {"l.dbf", dbfBytes({{"LABEL", 'C', 6}}, {"main  "})}});
}

TEST(ByteOrderMarks, OfADamageRun)
{
    expectNoDifference("-damages c.dmg", {{"c.dmg", kPlainControl},
                                          {"house.csv", "0,0\n0,0\n100,10000\n"},
                                          {"h.mif", buildingsMif(pointMif("3", "2"))},
                                          {"h.mid", "House,A,0,1\n"},
                                          {"wl.asc", levels(6, 8)}});
}

TEST(ByteOrderMarks, OfARainfallRun)
{
    const std::string gauges = "Columns 3\n  Name Char(40)\n  F1 Float\n  F2 Float\nCoordSys NonEarth\nData\n";
    expectNoDifference("-rf rain.rfc",
                       {{"rain.rfc", kRainfallGrid + kTwoHyetographs +
                                         "RF Interpolation Method == Poly\nRead GIS RF Points == gauges.mif\n"
                                         "Read GIS RF Polygon == areas.mif\n"},
                        {"a.csv", "Time,Depth\n0,2\n0.5,4\n"},
                        {"b.csv", "Time,Depth\n0,10\n0.5,20\n"},
                        {"gauges.mif", gauges + mifPoint("105 205")},
                        {"gauges.mid", "a,1,1\n"},
                        {"areas.mif", gauges + mifRectangle("90", "190", "140", "230")},
                        {"areas.mid", "b,1,2\n"}});
}

TEST(ByteOrderMarks, OfANetwork)
{
    expectNoDifference(
        "-nbc net.nbc",
        {{"net.nbc", "Read GIS Branch == 1d_br_a.mif\nRead GIS XS == 1d_cut_a.mif\nSet XS dx == 2\nRead Grid Z == "
                     "dem.asc\nRead GIS FLC == flc.mif\n"},
         {"1d_br_a.mif", mifHead(kBranchColumns) + "Line 1 5 9 5\n"},
         {"1d_br_a.mid", "x1,0.5,T,0\n"},
         {"1d_cut_a.mif", mifHead(kCutColumns) + "Line 4 2 4 8\n"},
         {"1d_cut_a.mid", "a,0,T,T,,,0\n"},
         {"flc.mif", mifHead({"FLC Float"}) + rectangle(0, 0, 9, 9)},
         {"flc.mid", "0.25\n"},
         {"dem.asc", ascGrid(sectionTerrain(10, 10))}});
}

TEST(ByteOrderMarks, OfAnAnswer)
{
    ToolRun run("-b -classify missing.csv a.asc");
    run.give("a.asc", kGrid);
    run.give("c.csv", "Limit,Name\n20,low\n50,high\n");
    run.type(std::string(kMark) + "c.csv");
    run.start();
    EXPECT_TRUE(run.says(openedInput("c.csv")));
    EXPECT_TRUE(run.reachedEnd());
}

} // namespace
} // namespace gridforge::test
