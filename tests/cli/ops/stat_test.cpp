#include "support/consoles.h"
#include "support/tool_run.h"

#include <algorithm>

namespace gridforge::test {
namespace {

// Cell by cell: all active, the second null, all null, all equal.
void giveThree(ToolRun& run)
{
    run.give("a.asc", ascGrid({{3, 8, kNull, 5}}));
    run.give("b.asc", ascGrid({{1, kNull, kNull, 5}}));
    run.give("c.asc", ascGrid({{2, 4, kNull, 5}}));
}

const Lines kInputs = {"a.asc", "b.asc", "c.asc"};

Lines loadedThree()
{
    const std::string shape = "1 rows by 4 columns";
    return joined(
        {headerOf("a.asc", shape),
         {"Allocating 0 Mb of memory for storing all grids."},
         ascCells(),
         headerOf("b.asc", shape),
         ascCells(),
         headerOf("c.asc", shape),
         ascCells(),
         {"Finished reading input grids.", kFormatOfInputs, "Writing legend for source file to: a_Src_legend.csv"},
         writtenTable("a_Src_legend.csv")});
}

Lines announced(const std::string& text, const std::string& base)
{
    return joined({{text + base}, writtenAsc(base)});
}

const std::string kLegend = "\"Value in Grid\",\"Source Grid File\"\r\n1,a.asc\r\n2,b.asc\r\n3,c.asc\r\n";

TEST(StatCli, AllStatisticsOfThreeGrids)
{
    ToolRun run("-statAll a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(
        run, joined({startOf(kInputs),
                     {"Processing Grid Stats.", "Processing stats from 3 grids.", "For 3 files the median rank is 2"},
                     loadedThree(),
                     {"Processing grid minimums...", "Done."},
                     announced("Writing minimum values to: ", "a_Min_Val"),
                     announced("Writing minimum source file to: ", "a_Min_Src"),
                     {"Processing grid maximums...", "Done."},
                     announced("Writing maximums values to: ", "a_Max_Val"),
                     announced("Writing maximums source file to: ", "a_Max_Src"),
                     {"Allocating 0 Mb of memory for storing ranked grids."},
                     announced("Writing rank values to: ", "a_Median_Val"),
                     announced("Writing rank / median source file to: ", "a_Median_Src"),
                     {"Processing grid mean...", "Done."},
                     announced("Writing mean values to: ", "a_Mean_Val"),
                     announced("Writing mean source file to: ", "a_Mean_Src"),
                     {"Processing grid fraction wet...", "Done."},
                     announced("Writing fraction values to: ", "a_Frac_Wet"),
                     normalEnd()}));
    EXPECT_GRID(run, "a_Min_Val.asc", {{1, kNull, kNull, 5}});
    EXPECT_GRID(run, "a_Min_Src.asc", {{2, kNull, kNull, 1}});
    EXPECT_GRID(run, "a_Max_Val.asc", {{3, 8, kNull, 5}});
    EXPECT_GRID(run, "a_Max_Src.asc", {{1, 1, kNull, 1}});
    EXPECT_GRID(run, "a_Median_Val.asc", {{2, 4, kNull, 5}});
    EXPECT_GRID(run, "a_Median_Src.asc", {{3, 3, kNull, 2}});
    EXPECT_GRID(run, "a_Mean_Val.asc", {{2, kNull, kNull, 5}});
    EXPECT_GRID(run, "a_Mean_Src.asc", {{3, kNull, kNull, 1}});
    EXPECT_GRID(run, "a_Frac_Wet.asc", {{1, 0.667, kNull, 1}});
    EXPECT_EQ(run.read("a_Src_legend.csv"), kLegend);
    EXPECT_NO_OTHER_FILES(run);
}

struct OneStatistic {
    const char* flag;
    Lines steps;
    Lines files;
};

class StatAlone : public testing::TestWithParam<OneStatistic> {};

TEST_P(StatAlone, WritesItsOwnFilesOnly)
{
    ToolRun run({GetParam().flag, "-b", "a.asc", "b.asc", "c.asc"});
    giveThree(run);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, GetParam().steps);
    std::vector<std::string> files = GetParam().files;
    files.emplace_back("a_Src_legend.csv");
    std::ranges::sort(files);
    EXPECT_EQ(run.changedFiles(), files);
}

INSTANTIATE_TEST_SUITE_P(
    Flags, StatAlone,
    testing::Values(
        OneStatistic{"-statMin", {"Processing grid minimums...", "Done."}, {"a_Min_Val.asc", "a_Min_Src.asc"}},
        OneStatistic{"-statMax", {"Processing grid maximums...", "Done."}, {"a_Max_Val.asc", "a_Max_Src.asc"}},
        OneStatistic{"-statMean", {"Processing grid mean...", "Done."}, {"a_Mean_Val.asc", "a_Mean_Src.asc"}},
        OneStatistic{"-statFrac", {"Processing grid fraction wet...", "Done."}, {"a_Frac_Wet.asc"}},
        OneStatistic{"-statMedian",
                     {"Processing stats from 3 grids.", "For 3 files the median rank is 2"},
                     {"a_Median_Val.asc", "a_Median_Src.asc"}},
        OneStatistic{"-statRank1",
                     {"Processing stats from 3 grids.", openedInput("a.asc")},
                     {"a_Rank1_Val.asc", "a_Rank1_Src.asc"}},
        OneStatistic{"-statRankAll",
                     {"Processing stats from 3 grids.", "Processing all 3 ranks", openedInput("a.asc")},
                     {"a_Rank1_Val.asc", "a_Rank1_Src.asc", "a_Rank2_Val.asc", "a_Rank2_Src.asc", "a_Rank3_Val.asc",
                      "a_Rank3_Src.asc"}}));

TEST(StatCli, TheFractionAloneLeavesDryCellsNull)
{
    ToolRun run("-statFrac a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    EXPECT_GRID(run, "a_Frac_Wet.asc", {{1, 0.667, kNull, 1}});
}

TEST(StatCli, RanksAloneLeaveDryCellsOfTheFractionNull)
{
    ToolRun run("-statFrac -statRank1 a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    EXPECT_GRID(run, "a_Frac_Wet.asc", {{1, 0.667, kNull, 1}});
    EXPECT_GRID(run, "a_Rank1_Val.asc", {{1, kNull, kNull, 5}});
    EXPECT_GRID(run, "a_Rank1_Src.asc", {{2, 2, kNull, 1}}); // a null has a source, but where all are null
}

TEST(StatCli, EqualValuesKeepListOrder)
{
    ToolRun run("-statRankAll a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    EXPECT_GRID(run, "a_Rank1_Src.asc", {{2, 2, kNull, 1}});
    EXPECT_GRID(run, "a_Rank2_Src.asc", {{3, 3, kNull, 2}});
    EXPECT_GRID(run, "a_Rank3_Src.asc", {{1, 1, kNull, 3}});
    EXPECT_GRID(run, "a_Rank3_Val.asc", {{3, 8, kNull, 5}});
}

TEST(StatCli, OfTwoGridsTheMedianIsTheMaximum)
{
    ToolRun run("-statMedian a.asc b.asc");
    run.give("a.asc", ascGrid({{3, 1}}));
    run.give("b.asc", ascGrid({{2, 7}}));
    run.start();
    EXPECT_TRUE(run.says("For 2 files the median rank is 2"));
    EXPECT_GRID(run, "a_Median_Val.asc", {{3, 7}});
    EXPECT_GRID(run, "a_Median_Src.asc", {{1, 2}});
}

TEST(StatCli, ARankThatIsTheMedianIsWrittenAsMedianOnly)
{
    ToolRun run("-statAll -statRank3 a.asc b.asc c.asc d.asc");
    giveThree(run);
    run.give("d.asc", ascGrid({{9, 9, 9, 9}}));
    run.start();
    EXPECT_TRUE(run.says("For 4 files the median rank is 3"));
    EXPECT_GRID(run, "a_Median_Val.asc", {{3, 8, kNull, 5}});
    EXPECT_GRID(run, "a_Median_Src.asc", {{1, 1, 3, 3}}); // in the third cell: null, null, null, 9
    EXPECT_FALSE(run.has("a_Rank3_Val.asc"));
}

TEST(StatCli, TheMedianAsARankKeepsItsRankName)
{
    ToolRun run("-statRank2 a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    EXPECT_GRID(run, "a_Rank2_Val.asc", {{2, 4, kNull, 5}});
    EXPECT_FALSE(run.has("a_Median_Val.asc"));
}

TEST(StatCli, RanksComeInTheOrderOfTheFlagsAndTheMedianLast)
{
    ToolRun run("-statRank3 -statMedian -statRank1 a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"Allocating 0 Mb of memory for storing ranked grids."},
                                      announced("Writing rank values to: ", "a_Rank3_Val"),
                                      announced("Writing rank / median source file to: ", "a_Rank3_Src"),
                                      announced("Writing rank values to: ", "a_Rank1_Val"),
                                      announced("Writing rank / median source file to: ", "a_Rank1_Src"),
                                      announced("Writing rank values to: ", "a_Median_Val"),
                                      announced("Writing rank / median source file to: ", "a_Median_Src"),
                                      normalEnd()}));
}

TEST(StatCli, RankAllReplacesEarlierRanks)
{
    ToolRun run("-statRank7 -statRankAll -statMedian a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {"Processing stats from 3 grids.", "Processing all 3 ranks", "For 3 files the median rank is 2"});
    EXPECT_GRID(run, "a_Rank1_Val.asc", {{1, kNull, kNull, 5}});
    EXPECT_GRID(run, "a_Median_Val.asc", {{2, 4, kNull, 5}});
    EXPECT_GRID(run, "a_Rank3_Val.asc", {{3, 8, kNull, 5}});
    EXPECT_FALSE(run.has("a_Rank2_Val.asc"));
}

TEST(StatCli, ARepeatedRankIsWrittenTwice)
{
    ToolRun run("-statRank1 -statRank1 a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    const std::string again = "WARNING - Output file was already written in this run and is replaced: a_Rank1_Val.asc";
    EXPECT_CONSOLE_HOLDS(
        run, joined({announced("Writing rank values to: ", "a_Rank1_Val"),
                     announced("Writing rank / median source file to: ", "a_Rank1_Src"),
                     {"Writing rank values to: a_Rank1_Val", again, openedOutput("a_Rank1_Val.asc", 1001)}}));
    EXPECT_GRID(run, "a_Rank1_Val.asc", {{1, kNull, kNull, 5}});
}

class StatRefusal : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(StatRefusal, OfRanksComesAfterTheLegend)
{
    ToolRun run(GetParam().first);
    giveThree(run);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({writtenTable("a_Src_legend.csv"), errorEnd(GetParam().second)}));
    EXPECT_TRUE(run.has("a_Src_legend.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

INSTANTIATE_TEST_SUITE_P(
    Ranks, StatRefusal,
    testing::Values(std::pair{"-statRank3 a.asc b.asc", "ERROR - Unable to process rank 3 as only 2 input grids."},
                    std::pair{"-statRank1 -statRank9 a.asc b.asc",
                              "ERROR - Unable to process rank 9 as only 2 input grids."},
                    std::pair{"-statRank0 a.asc b.asc", "ERROR - Unable to process rank 0 as only 2 input grids."},
                    std::pair{"-statRank-1 a.asc b.asc", "ERROR - Unable to process rank -1 as only 2 input grids."},
                    std::pair{"-statRank1 -statRank2 -statRank3 a.asc b.asc",
                              "ERROR - Number of ranks specified greater than number of input files."},
                    std::pair{"-statRank1 -statRank1 -statRank1 a.asc b.asc",
                              "ERROR - Number of ranks specified greater than number of input files."}));

TEST(StatCli, MinimumAndMaximumAreWrittenBeforeARankIsRefused)
{
    ToolRun run("-statMin -statRank5 -statMean a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    EXPECT_TRUE(run.says("ERROR - Unable to process rank 5 as only 3 input grids."));
    EXPECT_GRID(run, "a_Min_Val.asc", {{1, kNull, kNull, 5}});
    EXPECT_TRUE(run.has("a_Min_Src.asc") && run.has("a_Src_legend.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(StatCli, ASingleGridIsRefused)
{
    ToolRun run("-statAll a.asc");
    giveThree(run);
    run.start();
    EXPECT_CONSOLE(run, joined({startOf({"a.asc"}),
                                {"Processing Grid Stats."},
                                errorEnd("ERROR - Expecting more than 1 grid for \"-stat\" option..")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(StatCli, TenGridsPassAndElevenAreRefused)
{
    for (const int count : {10, 11}) {
        ToolRun run("-statMax -statMean g*.asc");
        for (int k = 0; k < count; ++k) {
            run.give("g" + std::string(1, static_cast<char>('a' + k)) + ".asc", ascGrid({{static_cast<double>(k)}}));
        }
        run.start();
        if (count == 11) {
            EXPECT_CONSOLE_HOLDS(run,
                                 joined({{"Processing Grid Stats."},
                                         errorEnd("ERROR - Expecting a maximum of 10 grids for \"-stat\" option..")}));
            EXPECT_NO_OTHER_FILES(run);
        } else {
            EXPECT_TRUE(run.says("Processing stats from 10 grids."));
            EXPECT_GRID(run, "ga_Max_Src.asc", {{10}});
            EXPECT_GRID(run, "ga_Mean_Val.asc", {{4.5}}); // 45 / 10
            EXPECT_GRID(run, "ga_Mean_Src.asc", {{6}});   // the 5 of the sixth grid reaches it first
        }
    }
}

TEST(StatCli, NullsMayDifferByAHundredthOnly)
{
    ToolRun near("-statMin a.asc b.asc");
    near.give("a.asc", ascGrid({{1, 1}}, {.null = -1, .lineEnd = "\n"}));
    near.give("b.asc", ascGrid({{-1.009, 2}}, {.null = -1.009, .lineEnd = "\n"}));
    near.start();
    EXPECT_GRID(near, "a_Min_Val.asc", {{-1, 1}});

    ToolRun far("-statMin a.asc b.asc");
    far.give("a.asc", ascGrid({{1}}));
    far.give("b.asc", ascGrid({{1}}, {.null = -9999.02, .lineEnd = "\n"}));
    far.start();
    EXPECT_CONSOLE_HOLDS(far,
                         joined({headerOf("b.asc", "1 rows by 1 columns"),
                                 errorEnd("ERROR - \"NODATA_value\" data does not match for grid a.asc and b.asc")}));
    EXPECT_NO_OTHER_FILES(far);
}

TEST(StatCli, AGridOfAnotherShapeEndsTheRun)
{
    ToolRun run("-statMin a.asc b.asc");
    run.give("a.asc", ascGrid({{1, 2}}));
    run.give("b.asc", ascGrid({{1}, {2}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"ERROR - number of rows for input grids do not match. Rows = 1 and 2",
                                       "ERROR - number of columns for input grids do not match. Columns = 2 and 1"},
                                      errorEnd("ERROR - dimensions of grids do not match (see above for details).")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(StatCli, ANullAmongTheDataSortsByItsSize)
{
    ToolRun run("-statRankAll a.asc b.asc");
    run.give("a.asc", ascGrid({{99, 3}}, {.null = 99, .lineEnd = "\n"}));
    run.give("b.asc", ascGrid({{100, 2}}, {.null = 99, .lineEnd = "\n"}));
    run.start();
    EXPECT_GRID(run, "a_Rank1_Val.asc", {{99, 99}}); // nothing above the null in the second cell
    EXPECT_GRID(run, "a_Rank1_Src.asc", {{1, 99}});
    EXPECT_GRID(run, "a_Rank2_Val.asc", {{100, 99}});
}

TEST(StatCli, ANullAboveTheDataBlanksEveryStatistic)
{
    const GridOptions nullAbove{.null = 9999, .lineEnd = "\n"};
    ToolRun run("-statAll -statRankAll a.asc b.asc");
    run.give("a.asc", ascGrid({{5, 9999}}, nullAbove));
    run.give("b.asc", ascGrid({{1, 4}}, nullAbove));
    run.start();
    for (const std::string name : {"Min_Val", "Min_Src", "Max_Val", "Max_Src", "Median_Val", "Median_Src", "Mean_Val",
                                   "Mean_Src", "Frac_Wet", "Rank1_Val", "Rank1_Src"}) {
        EXPECT_GRID(run, "a_" + name + ".asc", {{9999, 9999}});
    }
    EXPECT_TRUE(run.has("a_Src_legend.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(StatCli, OutAndFormatHoldForAllOutputs)
{
    ToolRun run("-statMax a.asc b.asc c.flt -out r.flt");
    run.give("a.asc", ascGrid({{3}}));
    run.give("b.asc", ascGrid({{1}}));
    run.give("c.flt", fltCells({{7}}));
    run.give("c.hdr", hdr(1, 1));
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {"Finished reading input grids.", "Using output file name specified with -out switch: \"r\"",
              "Using output format .flt as specified.", "Writing legend for source file to: r_Src_legend.csv"});
    EXPECT_GRID(run, "r_Max_Val.flt", {{7}});
    EXPECT_GRID(run, "r_Max_Src.flt", {{3}});
    EXPECT_TRUE(run.has("r_Max_Val.hdr") && run.has("r_Max_Src.hdr"));
    EXPECT_EQ(run.read("r_Src_legend.csv"),
              "\"Value in Grid\",\"Source Grid File\"\r\n1,a.asc\r\n2,b.asc\r\n3,c.flt\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(StatCli, SrcIsRefused)
{
    ToolRun run("-statMax -src a.asc b.asc");
    giveThree(run);
    run.start();
    EXPECT_TRUE(
        run.says("ERROR - The src switch is only used in combination with the min and max commands. Please check "
                 "your batch syntax."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(StatCli, TheMemoryFiguresAreInMillionsOfBytes)
{
    // 500 x 500 cells: 2 grids of 4 bytes are 2000000, 1 rank of 8 as well.
    const Cells cells(500, std::vector<double>(500, 1));
    ToolRun run("-statRank1 a.flt b.flt");
    run.give("a.flt", fltCells(cells));
    run.give("b.flt", fltCells(cells));
    run.give("a.hdr", hdr(500, 500));
    run.give("b.hdr", hdr(500, 500));
    run.start();
    EXPECT_TRUE(run.says("Allocating 2 Mb of memory for storing all grids."));
    EXPECT_TRUE(run.says("Allocating 2 Mb of memory for storing ranked grids."));
}

TEST(StatCli, GridsTooLargeForMemoryEndTheRunAndTheFigureWraps)
{
    ToolRun run("-statMin a.flt b.flt");
    for (const char* name : {"a", "b"}) {
        run.give(std::string(name) + ".flt", "");
        run.give(std::string(name) + ".hdr", hdr(2147483647, 1800000000));
    }
    run.start();
    // 2147483647 x 1800000000 x 2 x 4, of which 32 bits are -1515098112.
    EXPECT_CONSOLE_HOLDS(run, joined({{"Allocating -1515 Mb of memory for storing all grids."},
                                      errorEnd("ERROR - Could not allocate enough memory (RAM).")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(StatCli, TheProjectionIsTheLastGrids)
{
    ToolRun run("-statMin a.asc b.asc");
    run.give("a.asc", ascGrid({{5}}));
    run.give("b.asc", ascGrid({{3}}));
    run.give("a.prj", "PROJCS[\"first\"]\n");
    run.give("b.prj", "PROJCS[\"second\"]\n");
    run.start();
    EXPECT_EQ(run.read("a_Min_Val.prj"), "PROJCS[\"second\"]\r\n");
    EXPECT_EQ(run.read("a_Min_Src.prj"), "PROJCS[\"second\"]\r\n");
}

TEST(StatCli, RankAllReplacesRanksGivenBehindItToo)
{
    ToolRun run("-statRankAll -statRank7 a.asc b.asc c.asc");
    giveThree(run);
    run.start();
    EXPECT_GRID(run, "a_Rank3_Val.asc", {{3, 8, kNull, 5}});
    EXPECT_FALSE(run.says("ERROR - Unable to process rank 7 as only 3 input grids."));
}

} // namespace
} // namespace gridforge::test
