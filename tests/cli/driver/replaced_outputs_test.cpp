// Outputs that a run writes twice, for each kind of output. A warning stands before each opening that replaces one.
#include "support/consoles.h"
#include "support/layer_files.h"
#include "support/network_layers.h"
#include "support/rainfall_files.h"
#include "support/shp_bytes.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kWarning = "WARNING - Output file was already written in this run and is replaced: ";

// The names in the warnings of a run that goes well, in their order. Each warning must stand right before the opening
// of its file.
std::vector<std::string> replaced(ToolRun& run)
{
    run.start();
    EXPECT_EQ(run.error(), "");
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    const std::vector<std::string> lines = run.consoleLines();
    std::vector<std::string> names;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
        if (lines[i].starts_with(kWarning)) {
            names.push_back(lines[i].substr(kWarning.size()));
            EXPECT_TRUE(lines[i + 1].starts_with(openedInput(names.back()) + "  File Unit:")) << lines[i + 1];
        }
    }
    return names;
}

TEST(ReplacedOutputsCli, TextGrids)
{
    ToolRun run("-b -conv -out o a.flt b.flt c.flt");
    for (const char* name : {"a", "b", "c"}) {
        run.give(std::string(name) + ".flt", fltCells({{1}}));
        run.give(std::string(name) + ".hdr", hdr(1, 1));
    }
    EXPECT_THAT(replaced(run), ElementsAre("o.asc", "o.asc"));
}

TEST(ReplacedOutputsCli, BinaryGridsAndTheirHeaderButNoProjection)
{
    ToolRun run("-b -trim l.mif -flt a.asc");
    run.give("a.asc", ascGrid(rowColumnCells()));
    run.give("a.prj", "PROJCS[\"x\"]\n");
    run.give("l.mif", mifHeader({"Name Char(20)"}) + rectangle(1.5, 1.5, 3.5, 3.5) + rectangle(4.5, 4.5, 6.5, 6.5));
    run.give("l.mid", "one\none\n");
    EXPECT_THAT(replaced(run), ElementsAre("one_a.hdr", "one_a.flt"));
    EXPECT_CONSOLE_HOLDS(run, {"Writing output to: one_a", kWarning + "one_a.hdr", openedOutput("one_a.hdr", 1001),
                               closedUnit(1001), kWarning + "one_a.flt", openedOutput("one_a.flt", 1001),
                               "Writing FLT grid...", "Finished writing FLT grid.", closedUnit(1001),
                               openedOutput("one_a.prj", 1001), closedUnit(1001)});
}

TEST(ReplacedOutputsCli, GridsOfARepeatedRank)
{
    ToolRun run("-b -statRank2 -statRank1 -statRank2 a.asc b.asc c.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.give("b.asc", ascGrid({{2}}));
    run.give("c.asc", ascGrid({{3}}));
    EXPECT_THAT(replaced(run), ElementsAre("a_Rank2_Val.asc", "a_Rank2_Src.asc"));
}

TEST(ReplacedOutputsCli, GridsOfARemapThatShareAName)
{
    ToolRun run("-b -remap -wl wl.asc -dem dem.asc -ext wl.asc x.asc x.flt");
    const Cells coarse(3, std::vector<double>(3, 7));
    for (const char* name : {"wl.asc", "x.asc"}) {
        run.give(name, ascGrid(coarse, {.cellsize = 2}));
    }
    run.give("x.flt", fltCells(coarse));
    run.give("x.hdr", hdr(coarse, {.cellsize = 2}));
    run.give("dem.asc", ascGrid(Cells(6, std::vector<double>(6, 1))));
    EXPECT_THAT(replaced(run), ElementsAre("x_remap.asc"));
}

TEST(ReplacedOutputsCli, StepsWhoseTimesPrintAlike)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kRainfallGrid + kTwoHyetographs +
                          "RF Interpolation Method == Poly\nRead GIS RF Polygon == areas.mif\n");
    run.give("a.csv", "t\n1000000,1\n1000000.1,2\n1000000.2,3\n");
    run.give("b.csv", "t\n1000000,1\n1000000.1,2\n1000000.2,3\n");
    giveRainfallLayer(run, "areas", mifRectangle("110", "200", "130", "220"), "b,1,1\n");
    EXPECT_THAT(replaced(run), ElementsAre("rain_t1000000..asc", "rain_t1000000..asc"));
    EXPECT_GRID(run, "rain_t1000000..asc", {{-999, 3, 3}, {-999, 3, 3}});
}

TEST(ReplacedOutputsCli, TablesOfLinesWithOneLabel)
{
    ToolRun run("-b -lp l.mif dem.asc");
    run.give("dem.asc", ascGrid(rowColumnCells()));
    run.give("l.mif", mifHeader({"Label Char(20)"}) + "Line 2 5 8 5\nLine 2 6 8 6\n");
    run.give("l.mid", "river\nriver\n");
    EXPECT_THAT(replaced(run), ElementsAre("l_river.csv"));
}

TEST(ReplacedOutputsCli, TablesOfSectionsWithOneName)
{
    ToolRun run("-b -xs 1d_cut_t.mif -branch 1d_branches_t.mif dem.asc");
    giveDrawnNetwork(run);
    giveLayer(run, "1d_cut_t", kCutColumns, "Line 5 6 5 14\nLine 20 6 20 14\n",
              "\"same\",0,\"T\",\"T\",\"\",\"\",0\n\"same\",0,\"T\",\"T\",\"\",\"\",0\n");
    EXPECT_THAT(replaced(run), ElementsAre("same.csv"));
}

void giveTwoSectionLayers(ToolRun& run, const std::string& extension)
{
    run.give("dem.asc", ascGrid(sectionTerrain()));
    run.give("net.nbc", "Read GIS Branch == 1d_branches_t" + extension + "\nRead GIS XS == 1d_cut_t" + extension +
                            "\nRead GIS XS == 1d_tab_t" + extension + "\nSet XS dx == 1\nRead Grid Z == dem.asc\n");
}

TEST(ReplacedOutputsCli, LayersThatMapToOneName)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    giveTwoSectionLayers(run, ".mif");
    giveLayer(run, "1d_tab_t", kTabColumns, "Line 55 20 58 20\n",
              "\"tab\",\"XZ\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",-1,0,0\n");
    EXPECT_THAT(replaced(run), ElementsAre("1d_xs_t.mif", "1d_xs_t.mid"));
}

void giveShpLine(ToolRun& run, const std::string& name, const std::vector<double>& xy,
                 const std::vector<DbfColumn>& columns, const std::string& record)
{
    giveShapefile(run, name, 3, {.objects = {partsRecord(3, {0}, xy)}, .columns = columns, .values = {record}});
}

// Of the two units on a .shp and on a .shx only the first opening replaces anything.
TEST(ReplacedOutputsCli, SetsOfShapefilesThatMapToOneName)
{
    ToolRun run("-b -nbc net.nbc");
    giveTwoSectionLayers(run, ".shp");
    giveShpLine(run, "1d_branches_t", {0, 10, 50, 10},
                {{"NAME", 'C', 4}, {"N", 'N', 4}, {"UCS", 'C', 1}, {"LOSS", 'N', 3}}, "Main0.03T0.0");
    giveShpLine(run, "1d_cut_t", {5, 6, 5, 14},
                {{"NAME", 'C', 3},
                 {"DIST", 'N', 1},
                 {"SPLIT", 'C', 1},
                 {"EX", 'C', 1},
                 {"EM", 'C', 1},
                 {"BM", 'C', 1},
                 {"BD", 'N', 1}},
                "cut0TT  0");
    giveShpLine(run, "1d_tab_t", {20, 6, 20, 14},
                {{"SOURCE", 'C', 3},
                 {"TYPE", 'C', 2},
                 {"FLAGS", 'C', 1},
                 {"C1", 'C', 1},
                 {"C2", 'C', 1},
                 {"C3", 'C', 1},
                 {"C4", 'C', 1},
                 {"C5", 'C', 1},
                 {"C6", 'C', 1},
                 {"ZI", 'N', 2},
                 {"ZM", 'N', 1},
                 {"SKEW", 'N', 1}},
                "tabXZ       -100");
    EXPECT_THAT(replaced(run), ElementsAre("1d_xs_t_L.shp", "1d_xs_t_L.shx", "1d_xs_t_L.dbf"));
}

TEST(ReplacedOutputsCli, FilesCountNotTheirNames)
{
    ToolRun run("-b -na n.mif dem.asc");
    run.give("dem.asc", ascGrid(rowColumnCells()));
    run.give("n.mif", mifHeader({"ID Char(50)", "A Char(1)", "B Char(1)", "C Char(1)", "D Char(1)", "E Char(1)",
                                 "F Char(1)", "G Char(1)", "H Char(1)", "I Float", "J Float", "Skew Float"}) +
                          rectangle(1.5, 1.5, 4.5, 4.5) + rectangle(2.5, 2.5, 6.5, 6.5) +
                          rectangle(1.5, 1.5, 6.5, 6.5) + rectangle(3.5, 3.5, 6.5, 6.5));
    std::string records;
    for (const char* name : {"a.csv", "./a.csv", "hard.csv", "soft.csv"}) {
        records += std::string(name) + ",,,,,,,,,0,0,0\n";
    }
    run.give("n.mid", records);
    run.give("a.csv", "");
    std::filesystem::create_hard_link(run.folder() / "a.csv", run.folder() / "hard.csv");
    std::filesystem::create_symlink("a.csv", run.folder() / "soft.csv");
    EXPECT_THAT(replaced(run), ElementsAre("./a.csv", "hard.csv", "soft.csv"));
}

TEST(ReplacedOutputsCli, InputsAndOlderFilesDoNotCount)
{
    ToolRun run("-b -conv a.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.give("a.hdr", "older");
    std::filesystem::create_symlink("a.asc", run.folder() / "a.flt");
    EXPECT_THAT(replaced(run), IsEmpty());
    EXPECT_EQ(run.read("a.asc"), fltCells({{1}}));
}

} // namespace
} // namespace gridforge::test
