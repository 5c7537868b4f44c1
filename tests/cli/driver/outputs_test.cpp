// The two rules of naming and formatting an output, as -max applies them; -src leaves the values as its only output.
#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

const Cells kLow = {{1, 5}};
const Cells kHigh = {{4, 2}};
const Cells kHighest = {{4, 5}};

struct MaxRun : ToolRun {
    explicit MaxRun(const std::string& arguments) : ToolRun(("-max -src -b " + arguments).c_str())
    {
        give("a.asc", ascGrid(kLow));
        give("b.asc", ascGrid(kHigh));
        give("f.flt", fltCells(kLow));
        give("f.hdr", hdr(kLow));
        give("d.x/grid1.asc", ascGrid(kLow));
        give("d.x/grid2.asc", ascGrid(kHigh));
        give("d.x/plain", ascGrid(kLow));
        start();
        EXPECT_EQ(status(), 0);
        EXPECT_EQ(error(), "");
        EXPECT_TRUE(says(kFinished));
    }
};

const std::string kByInputs = kFormatOfInputs;
const std::string kAsc = "Using output format .asc as specified.";
const std::string kFlt = "Using output format .flt as specified.";

std::string given(const std::string& name)
{
    return "Using output file name specified with -out switch: \"" + name + "\"";
}

TEST(OutputsCli, WithoutWishesTheFirstInputDecides)
{
    const MaxRun run("a.asc f.flt b.asc");
    EXPECT_TRUE(run.says(kByInputs));
    EXPECT_GRID(run, "a(maxmax).asc", kHighest);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(OutputsCli, FormatOfABinaryFirstInput)
{
    const MaxRun run("f.flt b.asc");
    EXPECT_TRUE(run.says(kByInputs));
    EXPECT_GRID(run, "f(maxmax).flt", kHighest);
    run.expectFile("f(maxmax).hdr");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(OutputsCli, FlagsSetTheFormat)
{
    const MaxRun asc("-asc f.flt b.asc");
    EXPECT_TRUE(asc.says(kAsc));
    EXPECT_GRID(asc, "f(maxmax).asc", kHighest);
    EXPECT_NO_OTHER_FILES(asc);

    const MaxRun flt("-flt a.asc b.asc");
    EXPECT_TRUE(flt.says(kFlt));
    EXPECT_GRID(flt, "a(maxmax).flt", kHighest);
    flt.expectFile("a(maxmax).hdr");
    EXPECT_NO_OTHER_FILES(flt);
}

TEST(OutputsCli, BothFormatFlagsWriteFlt)
{
    const MaxRun run("-asc -flt a.asc b.asc");
    EXPECT_TRUE(run.says(kFlt));
    EXPECT_FALSE(run.says(kAsc));
    EXPECT_GRID(run, "a(maxmax).flt", kHighest);
    run.expectFile("a(maxmax).hdr");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(OutputsCli, GivenNameTakesNoSuffix)
{
    const MaxRun run("-out new a.asc b.asc");
    EXPECT_CONSOLE_HOLDS(run, {given("new"), kByInputs});
    EXPECT_GRID(run, "new.asc", kHighest);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(OutputsCli, GivenExtensionOfAGridSetsTheFormatInAnyCase)
{
    const MaxRun run("-out result.ASC f.flt b.asc");
    EXPECT_CONSOLE_HOLDS(run, {given("result"), kAsc});
    EXPECT_GRID(run, "result.asc", kHighest);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(OutputsCli, OtherExtensionStaysPartOfTheName)
{
    const MaxRun asc("-out result.txt a.asc b.asc");
    EXPECT_CONSOLE_HOLDS(asc, {given("result.txt"), kByInputs});
    EXPECT_GRID(asc, "result.txt.asc", kHighest);
    EXPECT_NO_OTHER_FILES(asc);

    const MaxRun flt("-flt -out result.txt a.asc b.asc");
    EXPECT_EQ(flt.read("result.txt.flt"), fltCells(kHighest));
    flt.expectFile("result.txt.hdr");
    EXPECT_NO_OTHER_FILES(flt);
}

TEST(OutputsCli, OutputLandsBesideTheFirstInput)
{
    const MaxRun run("d.x\\grid*.asc");
    EXPECT_TRUE(run.says("   File  1: d.x\\grid1.asc"));
    EXPECT_GRID(run, "d.x/grid1(maxmax).asc", kHighest);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(OutputsCli, GivenNameIsNoNeighbourOfTheInput)
{
    const MaxRun run("-out new d.x/grid1.asc d.x/grid2.asc");
    EXPECT_GRID(run, "new.asc", kHighest);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(OutputsCli, DotInAFolderIsNoExtension)
{
    const MaxRun run("d.x/plain b.asc");
    EXPECT_GRID(run, "d.x/plain(maxmax).asc", kHighest);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(OutputsCli, WaterLevelGridIsTheFirstInput)
{
    const MaxRun run("-wl b.asc a.asc");
    EXPECT_CONSOLE_HOLDS(run,
                         {"Input File  1: b.asc", "   File  1: b.asc", "Input File  2: a.asc", "   File  2: a.asc"});
    EXPECT_GRID(run, "b(maxmax).asc", kHighest);
    EXPECT_NO_OTHER_FILES(run);
}

} // namespace
} // namespace gridforge::test
