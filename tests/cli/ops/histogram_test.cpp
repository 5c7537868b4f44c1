#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

const std::string kBins = "Limit,Label\n10,Low\n20,'Not so low'\n";

Lines startedOn(const std::string& shape, const std::string& kilobytes = "0")
{
    return joined({startOf({"a.asc"}),
                   {"Creating Historgram.", "Loading grid data..."},
                   headerOf("a.asc", shape),
                   {"Allocating " + kilobytes + "Kb memory for storing input grid...", "Reading data..."},
                   ascCells(),
                   {"   Done.", "Getting histogram bins from: c.csv", "Maximum number of bins: 100",
                    openedInput("c.csv"), openedUnit(1001)}});
}

TEST(HistogramCli, CountsTheCellsOfEachBin)
{
    ToolRun run("-histogram c.csv a.asc");
    run.give("c.csv", kBins);
    run.give("a.asc", ascGrid({{5, 10, 10.5, kNull}, {20, 21, -7, 1000}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startedOn("2 rows by 4 columns"),
                                {"Skipping first line: Limit,Label", "Number of bins found: 2", closedUnit(1001),
                                 "Processing Row:", "   Done.", "Found 7 non-null values.",
                                 "Writing histogram data to: a_histogram.csv"},
                                writtenTable("a_histogram.csv"),
                                normalEnd()}));
    // Of 7: 3 up to 10, 2 up to 20, 2 above.
    EXPECT_EQ(run.read("a_histogram.csv"), "\"Bin\",\"Label\",\"Count\",\"Percentage\"\r\n"
                                           "10.,Low,           3, 42.86\r\n"
                                           "20.,Not so low,           2, 28.57\r\n"
                                           "Above 20.,Above 20.,           2, 28.57\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(HistogramCli, WithoutValuesThePercentagesAreNoNumbers)
{
    ToolRun run("-histogram c.csv a.asc");
    run.give("c.csv", kBins);
    run.give("a.asc", ascGrid({{kNull}}));
    run.start();
    EXPECT_TRUE(run.says("Found 0 non-null values."));
    EXPECT_EQ(run.read("a_histogram.csv"), "\"Bin\",\"Label\",\"Count\",\"Percentage\"\r\n"
                                           "10.,Low,           0,   NaN\r\n"
                                           "20.,Not so low,           0,   NaN\r\n"
                                           "Above 20.,Above 20.,           0,   NaN\r\n");
}

TEST(HistogramCli, AFullBinIsAHundredPercent)
{
    ToolRun run("-histogram c.csv a.asc");
    run.give("c.csv", "h\n0.25,a\n1000.5,b\n");
    run.give("a.asc", ascGrid({{1, 2, 3}}));
    run.start();
    EXPECT_EQ(run.read("a_histogram.csv"),
              "\"Bin\",\"Label\",\"Count\",\"Percentage\"\r\n"
              "0.25,a,           0,  0.00\r\n"
              "1000.,b,           3,100.00\r\n" // 1000.5 has no decimals; the tie goes to even
              "Above 1000.,Above 1000.,           0,  0.00\r\n");
}

TEST(HistogramCli, ANameWithTwoExtensionsLosesBoth)
{
    ToolRun run("-histogram c.csv d/a.b.asc");
    run.give("c.csv", kBins);
    run.give("d/a.b.asc", ascGrid({{1}}));
    run.start();
    EXPECT_TRUE(run.says("Writing histogram data to: d/a_histogram.csv"));
    EXPECT_TRUE(run.has("d/a_histogram.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(HistogramCli, WithOutTheTableHasNoName)
{
    ToolRun run("-histogram c.csv a.asc -out x");
    run.give("c.csv", kBins);
    run.give("a.asc", ascGrid({{1}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Found 1 non-null values.", "Using output file name specified with -out switch: \"x\"",
                               "Writing histogram data to: ",
                               "Empty filename specified.  Bailing out.  Please contact SUPPORT_CONTACT.", kClose});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(HistogramCli, ShowsEachHundredthRow)
{
    ToolRun run("-histogram c.csv a.asc");
    run.give("c.csv", kBins);
    run.give("a.asc", ascGrid(Cells(300, {1, 15})));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Processing Row:     100     200     300", "   Done.", "Found 600 non-null values."});
}

TEST(HistogramCli, RefusesMoreThanOneGrid)
{
    ToolRun run("-histogram c.csv a.asc b.asc");
    run.give("c.csv", kBins);
    run.give("a.asc", ascGrid({{1}}));
    run.give("b.asc", ascGrid({{1}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         joined({{"Creating Historgram."},
                                 errorEnd("ERROR - Only a single grid file accepetd for \"-histogram\" option.")}));
    EXPECT_NO_OTHER_FILES(run);
}

class BinRefusal : public testing::TestWithParam<std::pair<std::string, Lines>> {};

TEST_P(BinRefusal, EndsTheRun)
{
    ToolRun run("-histogram c.csv a.asc");
    run.give("c.csv", GetParam().first);
    run.give("a.asc", ascGrid({{1}}));
    run.start();
    EXPECT_CONSOLE(run, joined({startedOn("1 rows by 1 columns"), GetParam().second, errorEnd()}));
    EXPECT_NO_OTHER_FILES(run);
}

std::string manyBins(int count)
{
    std::string text = "head\n";
    for (int i = 1; i <= count; ++i) {
        text += std::to_string(i) + ",c\n";
    }
    return text;
}

INSTANTIATE_TEST_SUITE_P(
    BinFile, BinRefusal,
    testing::Values(
        std::pair{std::string(""), Lines{"Skipping first line: ", "Number of bins found: 0", closedUnit(1001),
                                         "ERROR - Less than two bins found."}},
        std::pair{std::string("h\n5,a\n"), Lines{"Skipping first line: h", "Number of bins found: 1", closedUnit(1001),
                                                 "ERROR - Less than two bins found."}},
        std::pair{std::string("h\n5,a\n4,b\n"), Lines{"Skipping first line: h", "Number of bins found: 2",
                                                      closedUnit(1001), "ERROR - Bins not in increasing order."}},
        std::pair{std::string("h\n5,a\nx,b\n"),
                  Lines{"Skipping first line: h", "ERROR - Reading following line in classes file:", "x,b"}},
        std::pair{manyBins(101), Lines{"Skipping first line: head", "ERROR - Number of bins exceeds maximum."}}));

TEST(BinFile, AHundredBinsPass)
{
    ToolRun run("-histogram c.csv a.asc");
    run.give("c.csv", manyBins(100));
    run.give("a.asc", ascGrid({{1, 100, 101}}));
    run.start();
    EXPECT_TRUE(run.says("Number of bins found: 100"));
    EXPECT_TRUE(run.read("a_histogram.csv")
                    .ends_with("100.,c,           1, 33.33\r\nAbove 100.,Above 100.,           1, 33.33\r\n"));
}

TEST(BinFile, ALimitThatIsNoNumberPassesAndHoldsNothing)
{
    ToolRun run("-histogram c.csv a.asc");
    run.give("c.csv", "h\n1,a\nNaN,b\n3,c\n");
    run.give("a.asc", ascGrid({{1, 2, 3, 4}}));
    run.start();
    EXPECT_EQ(run.read("a_histogram.csv"), "\"Bin\",\"Label\",\"Count\",\"Percentage\"\r\n"
                                           "1.,a,           1, 25.00\r\n"
                                           "NaN,b,           0,  0.00\r\n"
                                           "3.,c,           2, 50.00\r\n"
                                           "Above 3.,Above 3.,           1, 25.00\r\n");
}

} // namespace
} // namespace gridforge::test
