#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

TEST(MultiplyCli, MultipliesCellByCell)
{
    ToolRun run("-multiply a.asc b.asc");
    run.give("a.asc", ascGrid({{2, kNull, 4, 0.5}}));
    run.give("b.asc", ascGrid({{5, 6, -1, kNull}}, {.null = -1, .lineEnd = "\n"}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startOf({"a.asc", "b.asc"}),
                                {"Processing multiply option.", "Two input grids specified."},
                                headerOf("a.asc", "1 rows by 4 columns"),
                                {"Allocating 0Kb memory for storing grid 1...",
                                 "Allocating 0Kb memory for storing output grid...", "Reading: a.asc"},
                                ascCells(),
                                {"Allocating 0Kb memory for storing grid 2..."},
                                headerOf("b.asc", "1 rows by 4 columns"),
                                {"Reading: b.asc"},
                                ascCells(),
                                {"Processing Row:", "   Done.", kFormatOfInputs, "Writing output to: a_mlt_b"},
                                writtenAsc("a_mlt_b"),
                                normalEnd()}));
    EXPECT_GRID(run, "a_mlt_b.asc", {{10, kNull, kNull, -4999.5}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(MultiplyCli, TheSecondFolderStandsInTheMiddleOfTheName)
{
    ToolRun run("-multiply d\\a.asc d\\b.asc");
    run.give("d/a.asc", ascGrid({{2}}));
    run.give("d/b.asc", ascGrid({{5}}));
    run.give("d/a_mlt_d/keep", "");
    run.start();
    EXPECT_TRUE(run.says("Writing output to: d\\a_mlt_d\\b"));
    EXPECT_GRID(run, "d/a_mlt_d/b.asc", {{10}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(MultiplyCli, OutNamesTheOutput)
{
    ToolRun run("-multiply a.asc b.asc -out c.asc");
    run.give("a.asc", ascGrid({{2}}));
    run.give("b.asc", ascGrid({{5}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"   Done.", "Using specified output file name: \"c\"",
                               "Using output format .asc as specified.", "Writing output to: c"});
    EXPECT_GRID(run, "c.asc", {{10}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(MultiplyCli, AThirdInputNamesTheOutputExtensionIncluded)
{
    ToolRun run("-multiply a.asc b.asc c.asc");
    for (const char* name : {"a.asc", "b.asc", "c.asc"}) {
        run.give(name, ascGrid({{3}}));
    }
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Processing multiply option.", "   Using third filename as output: \"c.asc\"."});
    EXPECT_TRUE(run.says("Using specified output file name: \"c.asc\""));
    EXPECT_GRID(run, "c.asc.asc", {{9}});
    EXPECT_NO_OTHER_FILES(run);
}

class MultiplyRefusal : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(MultiplyRefusal, EndsTheRun)
{
    ToolRun run(GetParam().first);
    for (const char* name : {"a.asc", "b.asc", "c.asc", "d.asc"}) {
        run.give(name, ascGrid({{3}}));
    }
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"Processing multiply option."}, errorEnd(GetParam().second)}));
    EXPECT_NO_OTHER_FILES(run);
}

INSTANTIATE_TEST_SUITE_P(
    Inputs, MultiplyRefusal,
    testing::Values(std::pair{"-multiply a.asc", "ERROR - Multiply function requires two input grids."},
                    std::pair{"-multiply a.asc b.asc c.asc -out x",
                              "ERROR - Unable to use third grid for output as \"-out\" has been specified."},
                    std::pair{"-multiply ?.asc", "ERROR - More than three files specified with the mulitply option."}));

TEST(MultiplyCli, ASecondGridOfAnotherSizeEndsTheRun)
{
    ToolRun run("-multiply a.asc b.asc");
    run.give("a.asc", ascGrid({{1}, {2}}));
    run.give("b.asc", ascGrid({{1}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"ERROR - number of rows for input grids do not match. Rows = 2 and 1"},
                                      errorEnd("ERROR - dimensions of grids do not match (see above for details).")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(MultiplyCli, TheProjectionIsTheLastGrids)
{
    ToolRun run("-multiply a.asc b.asc");
    run.give("a.asc", ascGrid({{5}}));
    run.give("b.asc", ascGrid({{3}}));
    run.give("b.prj", "PROJCS[\"second\"]\n");
    run.start();
    EXPECT_EQ(run.read("a_mlt_b.prj"), "PROJCS[\"second\"]\r\n");
}

} // namespace
} // namespace gridforge::test
