#include "grid/header.h"

#include "core/text.h"
#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"

#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

const std::string kOpened = "Trying to open file a.asc...OK.\nOpened File Unit:1001\n";

void sayHeader(const grid::OpenGrid& grid)
{
    const GridHeader& h = grid.header;
    const auto shortest = [](double value) {
        std::string text = std::to_string(value);
        text.erase(text.find_last_not_of('0') + 1);
        return text;
    };
    std::string next;
    readLine(grid.unit, next);
    say("format ", grid.format == grid::Format::asc ? 1 : 2, " size ", h.nrows, "x", h.ncols, " corner ",
        shortest(h.xll), ' ', shortest(h.yll), " cell ", shortest(h.cellsize8), " null ",
        shortest(static_cast<double>(h.null)), " next <", next, ">");
}

// The console of reading the header of a.asc with this text.
std::string headerOf(const std::string& text)
{
    ScratchFolder folder;
    folder.give("a.asc", text);
    const ChildRun run = runInChild(folder, [] { sayHeader(grid::openGrid("a.asc")); });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(run.console.starts_with(kOpened)) << run.console;
    return run.console.substr(std::min(kOpened.size(), run.console.size()));
}

std::string failureOf(const std::string& text)
{
    return "\nERROR 2334 - Reading Grid file header information.\nLine = " + text + "\n" + kExits;
}

const std::string kIncomplete =
    "\nERROR 2333 - Insufficient header information in external grid file.  Check format of file.\n" + kExits;

TEST(ReadGridHeader, TakesKeywordsInAnyOrderAndCase)
{
    EXPECT_EQ(
        headerOf("NODATA_VALUE -1\r\nCellSize 2.5\r\nyllcorner 20\nXLLCORNER\t10\nNCOLS 3\n   nRows   2\n1 2 3\n"),
        "External Grid Info: 2 rows by 3 columns with 2.5 cell size.\n"
        "format 1 size 2x3 corner 10. 20. cell 2.5 null -1. next <1 2 3>\n");
}

TEST(ReadGridHeader, FindsTheKeyAnywhereInTheLine)
{
    EXPECT_EQ(
        headerOf(
            "the ncols 3\nnrows 2 rows\nxllcorner,1\nyllcorner 2,9\ncellsize 1d0\n7\n" /* a comma first: no value */),
        "External Grid Info: 2 rows by 3 columns with 1. cell size.\n"
        "format 1 size 2x3 corner -99999. 2. cell 1. null -9999. next <7>\n");
}

TEST(ReadGridHeader, ACentreMovesByAWholeCell)
{
    EXPECT_EQ(headerOf("xllcenter 100.5\nyllcenter 8\nncols 1\nnrows 1\ncellsize 1\n5\n"),
              "External Grid Info: 1 rows by 1 columns with 1. cell size.\n"
              "format 1 size 1x1 corner 99.5 7. cell 1. null -9999. next <5>\n");
    EXPECT_EQ(headerOf("cellsize 2\nxllcenter 100\nyllcorner 8\nncols 1\nnrows 1\n5\n"),
              "External Grid Info: 1 rows by 1 columns with 2. cell size.\n"
              "format 1 size 1x1 corner 98. 8. cell 2. null -9999. next <5>\n");
}

TEST(ReadGridHeader, RefusesAnIncompleteHeader)
{
    const std::string cells = "1 2 3\n";
    EXPECT_EQ(headerOf(cells), kIncomplete);
    EXPECT_EQ(headerOf("ncols 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n" + cells), kIncomplete);
    EXPECT_EQ(headerOf("ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 0\n" + cells), kIncomplete);
    EXPECT_EQ(headerOf("ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize -2\n" + cells), kIncomplete);
    EXPECT_EQ(headerOf("ncols 1\nnrows 1\nyllcorner 0\ncellsize 1\n" + cells), kIncomplete);
    EXPECT_EQ(headerOf("ncols 1\nnrows 1\nxllcorner 0\ncellsize 1\n" + cells), kIncomplete);
    EXPECT_EQ(headerOf("ncols -1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n" + cells), kIncomplete);
    EXPECT_EQ(headerOf("ncols 1\nnrows 0\nxllcorner 0\nyllcorner 0\ncellsize 1\n" + cells), kIncomplete);
}

TEST(ReadGridHeader, ACellSizeThatIsNoNumberPasses)
{
    EXPECT_EQ(headerOf("ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize nan\n5\n"),
              "External Grid Info: 1 rows by 1 columns with NaN cell size.\n"
              "format 1 size 1x1 corner 0. 0. cell nan null -9999. next <5>\n");
}

TEST(ReadGridHeader, RefusesWhatItCannotRead)
{
    EXPECT_EQ(headerOf(""), failureOf(""));
    EXPECT_EQ(headerOf("ncols 3"), failureOf("ncols 3"));
    EXPECT_EQ(headerOf("ncols 3\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n"),
              failureOf("NODATA_value -9999"));
    EXPECT_EQ(headerOf("ncols x\n1\n"), failureOf("ncols x"));
    EXPECT_EQ(headerOf("ncols 2.5\n1\n"), failureOf("ncols 2.5"));
    EXPECT_EQ(headerOf("nrows 3000000000\n1\n"), failureOf("nrows 3000000000"));
    EXPECT_EQ(headerOf("nrows 99999999999999999999999999\n1\n"), failureOf("nrows 99999999999999999999999999"));
    EXPECT_EQ(headerOf("xllcorner 1e999\n1\n"), failureOf("xllcorner 1e999"));
    EXPECT_EQ(headerOf("NODATA_value\n1\n"), failureOf("NODATA_value"));
    EXPECT_EQ(headerOf("ncols '5'\n1\n"), failureOf("ncols '5'"));
}

TEST(ReadGridHeader, RefusesMoreThan100KeywordLines)
{
    std::string text = "ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\n";
    for (int i = 0; i < 96; ++i) {
        text += "cellsize 1\n";
    }
    EXPECT_TRUE(headerOf(text + "5\n").starts_with("External Grid Info"));
    EXPECT_EQ(headerOf(text + "cellsize 1\n5\n"),
              "\nERROR 2332 - Failed to find header information in external grid file.  Check format of file.\n" +
                  kExits);
}

TEST(ReadGridHeader, BinaryGarbageIsNoHeader)
{
    std::string garbage;
    for (int i = 0; i < 5000; ++i) {
        garbage += static_cast<char>((i * 37 + i / 256) % 256);
    }
    EXPECT_EQ(headerOf(garbage), kIncomplete);
    EXPECT_EQ(headerOf(std::string(100 << 20, 'x')), kIncomplete);
}

TEST(ReadGridHeader, OfAFltIsTheHdrInItsFolder)
{
    ScratchFolder folder;
    folder.give("d/a.hdr", "ncols 3\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\nbyteorder MSBFIRST\n");
    const ChildRun run = runInChild(folder, [] { sayHeader(grid::openGrid("d\\a.FLT")); });
    EXPECT_EQ(run.console, "Trying to open file d\\a.hdr...OK.\nOpened File Unit:1001\n"
                           "External Grid Info: 2 rows by 3 columns with 1. cell size.\n"
                           "format 2 size 2x3 corner 0. 0. cell 1. null -9999. next <byteorder MSBFIRST>\n");
}

TEST(ReadGridHeader, AnyOtherExtensionIsText)
{
    ScratchFolder folder;
    folder.give("a.txt", "ncols 3\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\n7\n");
    const ChildRun run = runInChild(folder, [] { sayHeader(grid::openGrid("a.txt")); });
    EXPECT_NE(run.console.find("format 1 size 2x3"), std::string::npos) << run.console;
}

// --- The projection --------------------------------------------------------------------------------------------------

class Projection : public testing::Test {
protected:
    std::string consoleOf(const std::string& gridName)
    {
        folder_.give(gridName, "ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n7\n");
        const ChildRun run = runInChild(folder_, [&] { say("text <", grid::openGrid(gridName).projectionText, ">"); });
        return run.console;
    }

    ScratchFolder folder_;
};

const std::string kPrjOpened = "Trying to open file a.prj...OK.\nOpened File Unit:1001\n"
                               "Using a.prj for setting projection.\n";

TEST_F(Projection, IsTheFirstLineWithProjcs)
{
    folder_.give("a.prj", "first\r\n  projcs[\"x\"]  \r\nPROJCS[\"y\"]\r\n");
    EXPECT_EQ(consoleOf("a.asc"), kPrjOpened + "shp Projection:   projcs[\"x\"]\n...Closed File Unit:1001\n" + kOpened +
                                      "External Grid Info: 1 rows by 1 columns with 1. cell size.\n"
                                      "text <  projcs[\"x\"]>\n");
}

TEST_F(Projection, WithoutProjcsIsAWarning)
{
    folder_.give("a.prj", "GEOGCS[]\r\n");
    EXPECT_EQ(consoleOf("a.asc"),
              kPrjOpened + "WARNING - Unable to find PROJCS line in a.prj\n...Closed File Unit:1001\n" + kOpened +
                  "External Grid Info: 1 rows by 1 columns with 1. cell size.\ntext <>\n");
}

TEST_F(Projection, IsLookedForInTheCurrentFolderOnly)
{
    folder_.give("d/a.prj", "PROJCS[\"x\"]\r\n");
    EXPECT_NE(consoleOf("d/a.asc").find("text <>"), std::string::npos);
    folder_.give("a.prj", "PROJCS[\"y\"]\r\n");
    EXPECT_NE(consoleOf("d/a.asc").find("text <PROJCS[\"y\"]>"), std::string::npos);
}

TEST_F(Projection, ThatCannotBeReadEndsTheRun)
{
    std::filesystem::create_symlink("/proc/self/mem", folder_.path() / "a.prj");
    EXPECT_EQ(consoleOf("a.asc"), kPrjOpened + "ERROR - Reading projection file information.\nLine = \n" + kExits);
}

} // namespace
} // namespace gridforge::test
