// Outputs that would take the place of an input: refused before anything of them is opened, so nothing is lost.
#include "support/consoles.h"
#include "support/layer_files.h"
#include "support/network_layers.h"
#include "support/shp_bytes.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// --- Shapefiles ------------------------------------------------------------------------------------------------------

const std::string kLayerMessage = "ERROR - Output layer is also an input layer: ";

void givePoints(ToolRun& run, const std::string& base)
{
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveShapefile(run, base, 1,
                  {.objects = {pointRecord(4.3, 4.4)},
                   .columns = {{"OBS", 'N', 4}, {"MARK", 'C', 2}},
                   .values = {"  40a "},
                   .projection = "PROJCS[\"Test\"]\nand a second line\n"});
}

void giveShpLines(ToolRun& run, const std::string& base)
{
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveShapefile(run, base, 3,
                  {.objects = {partsRecord(3, {0}, {2, 5, 8, 5})}, .columns = {{"A", 'N', 4}}, .values = {"   1"}});
}

// The run ends right after it has numbered the layer `name`.
void expectLayerRefused(ToolRun& run, const std::string& name, int number)
{
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Opening GIS Layer: " + name,
                                       "GIS Layer assigned ID of " + std::to_string(number), kLayerMessage + name));
}

TEST(OutputsOverInputsCli, TheInputOfThePointsIsNoResult)
{
    ToolRun run("-cp p_P.shp -cpsd4 -out p.shp dem.asc");
    givePoints(run, "p_P");
    expectLayerRefused(run, "p.shp", 2);
    EXPECT_THAT(run.changedFiles(), ElementsAre("p.csv"));
}

TEST(OutputsOverInputsCli, NorIsItTheLayerOfTheConnections)
{
    ToolRun run("-cp q_Cn_L.shp -cpsd4 -out q.shp dem.asc");
    givePoints(run, "q_Cn_L");
    expectLayerRefused(run, "q_Cn.shp", 3);
    EXPECT_THAT(run.changedFiles(), ElementsAre("q.csv", "q_P.dbf", "q_P.prj", "q_P.shp", "q_P.shx"));
}

// The lines are the second set of these layers; the first is not opened either.
TEST(OutputsOverInputsCli, AnySetOfALayerCounts)
{
    ToolRun profile("-lp l_L.shp -check -out l.shp dem.asc");
    giveShpLines(profile, "l_L");
    expectLayerRefused(profile, "l.shp", 2);
    EXPECT_THAT(profile.changedFiles(), IsEmpty());

    for (const char* extension : {".shp", ".dbf"}) {
        ToolRun breakline("-brkline l.shp dem.asc");
        giveShpLines(breakline, "l");
        fs::create_hard_link(breakline.folder() / ("l" + std::string(extension)),
                             breakline.folder() / ("l_brkline_L" + std::string(extension)));
        expectLayerRefused(breakline, "l_brkline.shp", 2);
        EXPECT_THAT(breakline.changedFiles(), IsEmpty());
    }
}

TEST(OutputsOverInputsCli, LayersAreComparedByTheirFiles)
{
    ToolRun dots("-cp .\\p_P.shp -cpsd4 -out p.shp dem.asc");
    givePoints(dots, "p_P");
    expectLayerRefused(dots, "p.shp", 2);

    ToolRun otherCase("-cp P_p.SHP -cpsd4 -out p.shp dem.asc");
    givePoints(otherCase, "p_P");
    expectLayerRefused(otherCase, "p.shp", 2);

    ToolRun folders("-cp d/p_P.shp -cpsd4 -out e/p.shp dem.asc");
    givePoints(folders, "d/p_P");
    folders.give("dem.asc", ascGrid(rowColumnCells()));
    fs::create_directory_symlink("d", folders.folder() / "e");
    expectLayerRefused(folders, "e/p.shp", 2);

    for (const char* file : {"p.shp", "p.dbf"}) {
        ToolRun linked("-cp p.shp -cpsd4 -out o.shp dem.asc");
        givePoints(linked, "p");
        const std::string target = std::string("o_P") + fs::path(file).extension().string();
        fs::create_hard_link(linked.folder() / file, linked.folder() / target);
        expectLayerRefused(linked, "o.shp", 2);
        EXPECT_THAT(linked.changedFiles(), ElementsAre("o.csv"));
    }
}

TEST(OutputsOverInputsCli, ANeighbourOfTheInputIsWritten)
{
    ToolRun run("-b -cp p_P.shp -cpsd4 -out P.shp dem.asc");
    givePoints(run, "p_P");
    run.give("P_P.dbf", "an older file");
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_TRUE(run.has("P_P.shp"));
}

TEST(OutputsOverInputsCli, OfAMifTheUserIsAsked)
{
    ToolRun run("-cp p.mif -cpsd4 -out p.mif dem.asc");
    run.give("dem.asc", ascGrid(rowColumnCells()));
    run.give("p.mif", mifHeader({"Obs Float", "Mark Char(20)"}) + "Point 4.3 4.4\n");
    run.give("p.mid", "40,a\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Opening GIS Layer: p.mif", "GIS Layer assigned ID of 2", opening("p.mif"), "",
                                       "p.mif is already open, close it? "));
    EXPECT_THAT(run.changedFiles(), ElementsAre("p.csv"));
}

// --- Grids -----------------------------------------------------------------------------------------------------------

const std::string kGridMessage = "ERROR - Output file is also an input file: ";

// The run ends with the refusal after `line`, and has written `files` until then.
void expectGridRefused(ToolRun& run, const std::string& line, const std::string& input,
                       const std::vector<std::string>& files = {})
{
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, errorEnd(line, kGridMessage + input));
    EXPECT_EQ(run.changedFiles(), files);
}

const std::string kToFlt = "Converting .asc to .flt...";
const std::string kToAsc = "Converting .flt to .asc...";

TEST(OutputsOverInputsCli, ConvKeepsTheGridsToCome)
{
    ToolRun toText("-conv a.flt a.asc");
    giveFlt(toText, "a", {{1}});
    toText.give("a.asc", ascGrid({{2}}));
    expectGridRefused(toText, kToAsc, "a.asc");

    ToolRun toBinary("-conv a.asc c.asc b.flt c.flt");
    toBinary.give("a.asc", ascGrid({{1}}));
    toBinary.give("c.asc", ascGrid({{2}}));
    giveFlt(toBinary, "b", {{3}});
    giveFlt(toBinary, "c", {{4}});
    expectGridRefused(toBinary, kToFlt, "c.flt", {"a.flt", "a.hdr"});

    ToolRun named("-conv a.asc b.flt -out d\\..\\b");
    named.give("a.asc", ascGrid({{1}}));
    named.give("d/.keep", "");
    giveFlt(named, "b", {{2}});
    expectGridRefused(named, "Using output file name specified with -out switch: \"d\\..\\b\"", "b.flt");
}

TEST(OutputsOverInputsCli, ConvComparesFiles)
{
    ToolRun hard("-conv a.asc d/b.asc");
    hard.give("a.asc", ascGrid({{1}}));
    hard.give("d/b.asc", ascGrid({{2}}));
    fs::create_hard_link(hard.folder() / "d/b.asc", hard.folder() / "a.flt");
    expectGridRefused(hard, kToFlt, "d/b.asc");

    ToolRun soft("-conv a.asc d/b.asc");
    soft.give("a.asc", ascGrid({{1}}));
    soft.give("d/b.asc", ascGrid({{2}}));
    fs::create_symlink("d/b.asc", soft.folder() / "a.flt");
    expectGridRefused(soft, kToFlt, "d/b.asc");

    // The .hdr of a later grid counts as that grid.
    ToolRun header("-conv a.asc ./d/b.flt");
    header.give("a.asc", ascGrid({{1}}));
    giveFlt(header, "d/b", {{2}});
    fs::create_hard_link(header.folder() / "d/b.hdr", header.folder() / "a.hdr");
    expectGridRefused(header, kToFlt, "./d/b.flt");

    // So does one that is found in other case only.
    ToolRun otherCase("-conv B.asc b.flt");
    otherCase.give("B.asc", ascGrid({{1}}));
    otherCase.give("b.flt", fltCells({{2}}));
    otherCase.give("B.hdr", hdr(1, 1));
    expectGridRefused(otherCase, kToFlt, "b.flt");
}

TEST(OutputsOverInputsCli, ConvReplacesGridsThatAreReadAlready)
{
    ToolRun run("-b -conv a.flt b.asc a.flt -out c");
    giveFlt(run, "a", {{1}});
    run.give("b.asc", ascGrid({{2}}));
    fs::create_hard_link(run.folder() / "b.asc", run.folder() / "c.hdr");
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_EQ(run.read("c.flt"), fltCells({{2}}));
    EXPECT_EQ(run.read("b.asc"), run.read("c.hdr"));
    EXPECT_GRID(run, "c.asc", {{1}});
}

TEST(OutputsOverInputsCli, ConvReplacesTheProjectionOfAGridToCome)
{
    ToolRun run("-b -conv a.asc d/a.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.give("d/a.asc", ascGrid({{2}}));
    run.give("a.prj", "PROJCS[\"x\"]\n");
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_EQ(run.read("d/a.prj"), "PROJCS[\"x\"]\r\n");
}

void giveRegion(ToolRun& run)
{
    run.give("l.mif", mifHeader({"Name Char(20)"}) + rectangle(1.5, 1.5, 3.5, 3.5) + rectangle(4.5, 4.5, 6.5, 6.5));
    run.give("l.mid", "one\ntwo\n");
    run.give("a.asc", ascGrid(rowColumnCells()));
}

TEST(OutputsOverInputsCli, TrimKeepsTheGridsToCome)
{
    ToolRun text("-trim l.mif a.asc two_a.asc");
    giveRegion(text);
    text.give("two_a.asc", ascGrid(rowColumnCells()));
    expectGridRefused(text, "Writing output to: two_a", "two_a.asc", {"one_a.asc"});

    ToolRun binary("-trim l.mif -flt a.asc d/../one_a.flt");
    giveRegion(binary);
    binary.give("d/.keep", "");
    giveFlt(binary, "one_a", rowColumnCells());
    expectGridRefused(binary, "Writing output to: one_a", "d/../one_a.flt");
}

TEST(OutputsOverInputsCli, TrimReplacesGridsThatAreReadAlready)
{
    ToolRun run("-b -trim l.mif one_a.asc a.asc");
    giveRegion(run);
    run.give("one_a.asc", ascGrid(rowColumnCells()));
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_THAT(run.changedFiles(), ElementsAre("one_a.asc", "one_one_a.asc", "two_a.asc", "two_one_a.asc"));
}

void giveRemap(ToolRun& run, const std::vector<std::string>& extras)
{
    const Cells coarse(3, std::vector<double>(3, 7));
    run.give("wl.asc", ascGrid(coarse, {.cellsize = 2}));
    run.give("dem.asc", ascGrid(Cells(6, std::vector<double>(6, 1))));
    for (const std::string& name : extras) {
        run.give(name, ascGrid(coarse, {.cellsize = 2}));
    }
}

TEST(OutputsOverInputsCli, RemapKeepsTheExtraGridsToCome)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc -ext wl.asc x.asc y.asc ./x_remap.asc");
    giveRemap(run, {"x.asc", "y.asc", "x_remap.asc"});
    run.start();
    EXPECT_TRUE(run.says(kGridMessage + "./x_remap.asc"));
    EXPECT_FALSE(run.says("Processing: y.asc"));
    EXPECT_THAT(run.changedFiles(), Not(testing::Contains("x_remap.asc")));
    EXPECT_THAT(run.console(), Not(HasSubstr(opening("x_remap.asc"))));
    EXPECT_TRUE(run.console().ends_with("\n" + kExits));
}

TEST(OutputsOverInputsCli, RemapKeepsTheExtraGridsFromItsOwnLevelsAndDepths)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc -ext wl.asc -flt extra.flt");
    giveRemap(run, {});
    run.give("extra.flt", fltCells(Cells(3, std::vector<double>(3, 7))));
    run.give("extra.hdr", hdr(3, 3, {.cellsize = 2}));
    fs::create_hard_link(run.folder() / "extra.hdr", run.folder() / "wl_remap_h.hdr");
    run.start();
    EXPECT_TRUE(run.console().ends_with("\n" + kGridMessage + "extra.flt\n" + kExits));
    EXPECT_THAT(run.changedFiles(), IsEmpty());
}

TEST(OutputsOverInputsCli, RemapReplacesGridsThatItSkips)
{
    ToolRun run("-b -remap -wl wl.asc -dem dem.asc -ext wl.asc wl_remap_h_.asc x.asc");
    giveRemap(run, {"wl_remap_h_.asc", "x.asc"});
    fs::create_hard_link(run.folder() / "wl_remap_h_.asc", run.folder() / "wl_remap_h.asc");
    run.start();
    EXPECT_TRUE(run.says("Skipping water level gird: wl_remap_h_.asc"));
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_EQ(run.grid("wl_remap_h_.asc").ncols, 6);
}

TEST(OutputsOverInputsCli, RemapReplacesExtraGridsThatAreReadAlready)
{
    ToolRun run("-b -remap -wl wl.asc -dem dem.asc -ext wl.asc x_remap.asc x.asc");
    giveRemap(run, {"x_remap.asc", "x.asc"});
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_EQ(run.grid("x_remap.asc").ncols, 6);
}

} // namespace
} // namespace gridforge::test
