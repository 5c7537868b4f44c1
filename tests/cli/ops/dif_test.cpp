#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

// Digits: grid, row, column.
const Cells kFirst = {{121, 122, kNull}, {111, 112, kNull}};
const Cells kSecond = {{220, kNull, 223}, {211, 210, kNull}};

TEST(DifCli, WritesTheDifferenceAndWhereOnlyOneIsActive)
{
    ToolRun run("-dif a.asc b.asc");
    run.give("a.asc", ascGrid(kFirst));
    run.give("b.asc", ascGrid(kSecond));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(
        run, joined({startOf({"a.asc", "b.asc"}),
                     {"Processing \"-dif\" option."},
                     headerOf("a.asc", "2 rows by 3 columns"),
                     {"Allocating 0Kb memory for storing grid 1...", "Allocating 0Kb memory for storing grid 2...",
                      "Allocating 0Kb memory for storing difference grid...",
                      "Allocating 0Kb memory for storing wet/dry grid...", "Reading: a.asc"},
                     ascCells(),
                     headerOf("b.asc", "2 rows by 3 columns"),
                     {"Reading: b.asc"},
                     ascCells(),
                     {"Processing difference calculations...", "Processing row:", "Done processing differences.",
                      kFormatOfInputs, "Writing difference values to: a - b"},
                     writtenAsc("a - b"),
                     {"Writing wet/dry file to: a - b_wd"},
                     writtenAsc("a - b_wd"),
                     {""},
                     normalEnd()}));
    EXPECT_GRID(run, "a - b.asc", {{121 - 220, kNull, kNull}, {111 - 211, 112 - 210, kNull}});
    EXPECT_GRID(run, "a - b_wd.asc", {{kNull, 99, -99}, {kNull, kNull, kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DifCli, NamesTheOutputBesideTheFirstInputWithoutTheFolderOfTheSecond)
{
    ToolRun run("-b -dif in/a.asc other/b.c.flt");
    run.give("in/a.asc", ascGrid({{5}}));
    run.give("other/b.c.flt", fltCells({{3}}));
    run.give("other/b.c.hdr", hdr(1, 1));
    run.start();
    EXPECT_GRID(run, "in/a - b.c.asc", {{2}});
    EXPECT_GRID(run, "in/a - b.c_wd.asc", {{kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DifCli, ChangeTakesADryCellForZeroAndWritesNoWetDry)
{
    ToolRun run("-dif -change a.asc b.asc");
    run.give("a.asc", ascGrid(kFirst));
    run.give("b.asc", ascGrid(kSecond));
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run,
        joined({{kFormatOfInputs, "Writing difference values to: a - b"}, writtenAsc("a - b"), {""}, normalEnd()}));
    EXPECT_GRID(run, "a - b.asc", {{121 - 220, 122, -223}, {111 - 211, 112 - 210, kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DifCli, NowetdryDecidesTheCellsOverChange)
{
    ToolRun run("-dif -nowetdry -change a.asc b.asc");
    run.give("a.asc", ascGrid(kFirst));
    run.give("b.asc", ascGrid(kSecond));
    run.start();
    EXPECT_GRID(run, "a - b.asc", {{121 - 220, kNull, kNull}, {111 - 211, 112 - 210, kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DifCli, NowetdryAloneIsRefused)
{
    ToolRun run("-dif -nowetdry a.asc b.asc");
    run.give("a.asc", ascGrid(kFirst));
    run.give("b.asc", ascGrid(kSecond));
    run.start();
    EXPECT_CONSOLE(run, {kBanner, "ERROR - More than one operational flag specified.", kEnter});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DifCli, AThirdNameIsTheOutputAndNeedNotExist)
{
    ToolRun run("-dif a.asc b.asc c.asc");
    run.give("a.asc", ascGrid(kFirst));
    run.give("b.asc", ascGrid(kSecond));
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, joined({{"Done processing differences.", "Using output file name specified with -out switch: \"c\"",
                      "Using output format .asc as specified.", "Writing difference values to: c"},
                     writtenAsc("c"),
                     {"Writing wet/dry file to: c_wd"},
                     writtenAsc("c_wd")}));
    EXPECT_GRID(run, "c.asc", {{121 - 220, kNull, kNull}, {111 - 211, 112 - 210, kNull}});
    EXPECT_GRID(run, "c_wd.asc", {{kNull, 99, -99}, {kNull, kNull, kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DifCli, OutAndFltSetNameAndFormatOfBothOutputs)
{
    ToolRun run("-dif a.asc b.asc -out d/x.txt -flt");
    run.give("a.asc", ascGrid({{5, kNull}}));
    run.give("b.asc", ascGrid({{3, 1}}));
    run.give("d/keep", "");
    run.start();
    EXPECT_GRID(run, "d/x.txt.flt", {{2, kNull}});
    EXPECT_GRID(run, "d/x.txt_wd.flt", {{kNull, -99}});
    EXPECT_TRUE(run.has("d/x.txt.hdr") && run.has("d/x.txt_wd.hdr"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DifCli, AThirdInputThroughWildcardsNamesTheOutput)
{
    ToolRun run("-dif g?.asc h.asc");
    run.give("g1.asc", ascGrid({{5}}));
    run.give("g2.asc", ascGrid({{3}}));
    run.give("h.asc", ascGrid({{9}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Done processing differences.", kFormatOfInputs, "Writing difference values to: h"});
    EXPECT_GRID(run, "h.asc", {{2}});
    EXPECT_GRID(run, "h_wd.asc", {{kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DifCli, MoreThanThreeInputsThroughWildcardsAreRefused)
{
    ToolRun run("-dif g?.asc h?.asc");
    for (const char* name : {"g1.asc", "g2.asc", "h1.asc", "h2.asc"}) {
        run.give(name, ascGrid({{1}}));
    }
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {"Processing \"-dif\" option.", "ERROR - A maximum of three grids are used for -dif options.", kEnter});
    EXPECT_FALSE(run.says(kClose));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DifCli, EachGridIsTestedAgainstItsOwnNull)
{
    GridOptions second;
    second.null = -999;
    ToolRun run("-dif a.asc b.asc");
    run.give("a.asc", ascGrid({{1, 0, -9999, 4}}));
    run.give("b.asc", ascGrid({{-9999, 0, -999, -999}}, second));
    run.start();
    EXPECT_GRID(run, "a - b.asc", {{10000, 0, kNull, kNull}});
    EXPECT_GRID(run, "a - b_wd.asc", {{kNull, kNull, kNull, 99}});
}

TEST(DifCli, SubtractsInSinglePrecision)
{
    ToolRun run("-dif a.asc b.asc -decimal9");
    run.give("a.asc", ascGrid({{0.3}}));
    run.give("b.asc", ascGrid({{0.1}}));
    run.start();
    EXPECT_GRID(run, "a - b.asc",
                {{0.200000018}}); // 0.300000012 - 0.100000001, rounded to a single; 0.200000003 were 0.2
}

// Another header than the first grid's, and what is said of it.
struct Misfit {
    std::string name;
    std::string grid;
    Lines messages;
};

class DifMisfit : public testing::TestWithParam<Misfit> {};

TEST_P(DifMisfit, EndsTheRunBeforeTheSecondGridsCells)
{
    ToolRun run("-dif a.asc b.asc");
    run.give("a.asc", ascGrid({{1, 2}, {3, 4}}));
    run.give("b.asc", GetParam().grid);
    run.start();
    Lines expected = GetParam().messages;
    for (const std::string& line : errorEnd("ERROR - dimensions of grids do not match (see above for details).")) {
        expected.push_back(line);
    }
    EXPECT_CONSOLE_HOLDS(run, expected);
    EXPECT_FALSE(run.says("Reading: b.asc"));
    EXPECT_NO_OTHER_FILES(run);
}

INSTANTIATE_TEST_SUITE_P(
    Five, DifMisfit,
    testing::Values(
        Misfit{"rows", ascGrid({{1, 2}}), {"ERROR - number of rows for input grids do not match. Rows = 2 and 1"}},
        Misfit{"columns",
               ascGrid({{1}, {2}}),
               {"ERROR - number of columns for input grids do not match. Columns = 2 and 1"}},
        Misfit{"x",
               ascGrid({{1, 2}, {3, 4}}, {.xll = 0.02, .lineEnd = "\n"}),
               {"ERROR - x coordinates of input grids do not match. xll = 0. and 0.02"}},
        Misfit{"y",
               ascGrid({{1, 2}, {3, 4}}, {.yll = -3, .lineEnd = "\n"}),
               {"ERROR - y coordinates of input grids do not match. yll = 0. and -3."}},
        Misfit{"cellsize",
               ascGrid({{1, 2}, {3, 4}}, {.cellsize = 2, .lineEnd = "\n"}),
               {"ERROR - cell size of input grids do not match. cell sizes = 1. and 2."}}),
    [](const testing::TestParamInfo<Misfit>& misfit) { return misfit.param.name; });

TEST(DifCli, AnOriginWithinTheToleranceKeepsTheFirst)
{
    ToolRun run("-dif a.asc b.asc");
    run.give("a.asc", ascGrid({{5}}));
    run.give("b.asc", ascGrid({{3}}, {.xll = 0.005, .lineEnd = "\n"}));
    run.start();
    EXPECT_EQ(run.grid("a - b.asc").xll, 0.0);
    EXPECT_GRID(run, "a - b.asc", {{2}});
}

TEST(DifCli, ShowsEachHundredthRow)
{
    const Cells tall(250, {1, 2});
    ToolRun run("-dif a.asc b.asc");
    run.give("a.asc", ascGrid(tall));
    run.give("b.asc", ascGrid(tall));
    run.start();
    EXPECT_TRUE(run.says("Processing row:     100     200"));
    EXPECT_TRUE(run.says("Allocating 2Kb memory for storing grid 1...")); // 250 x 2 x 4 = 2000
    EXPECT_GRID(run, "a - b.asc", Cells(250, {0, 0}));
}

TEST(DifCli, TheProjectionIsTheLastGrids)
{
    ToolRun run("-dif a.asc b.asc");
    run.give("a.asc", ascGrid({{5}}));
    run.give("b.asc", ascGrid({{3}}));
    run.give("a.prj", "PROJCS[\"first\"]\n");
    run.give("b.prj", "PROJCS[\"second\"]\n");
    run.start();
    EXPECT_EQ(run.read("a - b.prj"), "PROJCS[\"second\"]\r\n");
    EXPECT_EQ(run.read("a - b_wd.prj"), "PROJCS[\"second\"]\r\n");
}

} // namespace
} // namespace gridforge::test
