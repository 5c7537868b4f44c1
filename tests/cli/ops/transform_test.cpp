#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

TEST(TransformCli, AppliesBothValues)
{
    ToolRun run("-trans_m0.5 -trans_c10 DEM.asc");
    run.give("DEM.asc", ascGrid({{2, 4, kNull}, {-6, 0, 1}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(
        run, joined({startOf({"DEM.asc"}),
                     {"Transforming data (y = mx + c).", "Multiplier (m) =     0.5000", "Add Value  (c) =    10.0000"},
                     headerOf("DEM.asc", "2 rows by 3 columns"),
                     {"Allocating 0Kb memory for storing input grid...",
                      "Allocating 0Kb memory for storing output grid...", "Reading: DEM.asc"},
                     ascCells(),
                     {"Processing transformation....", "Processing Row:", "Done", kFormatOfInputs,
                      "Writing transformed values to: DEM_trans"},
                     writtenAsc("DEM_trans"),
                     normalEnd()}));
    EXPECT_GRID(run, "DEM_trans.asc", {{11, 12, kNull}, {7, 10, 10.5}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(TransformCli, ASumAloneKeepsTheMultiplierOne)
{
    ToolRun run("-trans_c5 a.flt");
    run.give("a.flt", fltCells({{1, 2}}));
    run.give("a.hdr", hdr(2, 1));
    run.start();
    EXPECT_TRUE(run.says("Multiplier (m) =     1.0000"));
    EXPECT_TRUE(run.says("Add Value  (c) =     5.0000"));
    EXPECT_GRID(run, "a_trans.flt", {{6, 7}});
    EXPECT_TRUE(run.has("a_trans.hdr"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(TransformCli, AMultiplierAloneAddsNothing)
{
    ToolRun run("-trans_m-2 a.asc");
    run.give("a.asc", ascGrid({{1, 2}}));
    run.start();
    EXPECT_TRUE(run.says("Multiplier (m) =    -2.0000"));
    EXPECT_TRUE(run.says("Add Value  (c) =     0.0000"));
    EXPECT_GRID(run, "a_trans.asc", {{-2, -4}});
}

TEST(TransformCli, AValueTooWideForItsFieldFillsItWithStars)
{
    ToolRun run("-trans_m1000000 a.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.start();
    EXPECT_TRUE(run.says("Multiplier (m) = **********"));
    EXPECT_GRID(run, "a_trans.asc", {{1000000}});
}

TEST(TransformCli, FurtherInputsAreIgnored)
{
    ToolRun run("-trans_c1 a.asc b.asc -out x.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.give("b.asc", ascGrid({{5, 5}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Done", "Using output file name specified with -out switch: \"x\"",
                               "Using output format .asc as specified.", "Writing transformed values to: x"});
    EXPECT_FALSE(run.says("Reading: b.asc"));
    EXPECT_GRID(run, "x.asc", {{2}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(TransformCli, AResultThatEqualsTheNullLooksNull)
{
    ToolRun run("-trans_c-10000 a.asc");
    run.give("a.asc", ascGrid({{1, 2}}));
    run.start();
    EXPECT_GRID(run, "a_trans.asc", {{kNull, -9998}});
}

} // namespace
} // namespace gridforge::test
