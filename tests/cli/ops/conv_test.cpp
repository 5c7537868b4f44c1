#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

TEST(ConvCli, TurnsTextIntoBinaryBesideTheInput)
{
    ToolRun run("-conv d/a.asc");
    run.give("d/a.asc", ascGrid({{21, 22, 23}, {11, kNull, 13}}, {.xll = 100.5, .yll = -20, .cellsize = 2}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startOf({"d/a.asc"}),
                                {"Converting grid formats.", "Processing 1 input grids.", "Proecsing File:  1: d/a.asc",
                                 openedInput("d/a.asc"), openedUnit(1001),
                                 "External Grid Info: 2 rows by 3 columns with 2. cell size.",
                                 "Allocating 0Kb memory for external grid..."},
                                ascCells(),
                                {"Converting .asc to .flt..."},
                                writtenFlt("d/a"),
                                {"Deallocating memory...", "   Done."},
                                normalEnd()}));
    EXPECT_EQ(run.read("d/a.flt"), fltCells({{21, 22, 23}, {11, kNull, 13}}));
    EXPECT_EQ(run.read("d/a.hdr"), "ncols 3\r\nnrows 2\r\nxllcorner 100.5\r\nyllcorner -20.\r\ncellsize 2.\r\n"
                                   "NODATA_value -9999.0\r\nbyteorder LSBFIRST\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ConvCli, TurnsBinaryIntoText)
{
    ToolRun run("-conv a.flt");
    run.give("a.flt", fltCells({{12.5, kNull, 12.25}, {0.0625, -0.0001, 99999}}));
    run.give("a.hdr", hdr(3, 2));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {openedUnit(1001), "External Grid Info: 2 rows by 3 columns with 1. cell size.",
                               "Allocating 0Kb memory for external grid...", closedUnit(1001), openedInput("a.flt"),
                               openedUnit(1001), closedUnit(1001), "Converting .flt to .asc...",
                               openedOutput("a.asc", 1001), "Writing ASC grid...", "Finished writing ASC grid.",
                               closedUnit(1001), "Deallocating memory...", "   Done.", kFinished});
    // The largest magnitude 99999 is `99999.`, six characters, so fields are 3 + 6 + 2 = 11 wide. 0.0625 is a tie: to even.
    EXPECT_EQ(run.read("a.asc"), "ncols 3\r\nnrows 2\r\nxllcorner 0.\r\nyllcorner 0.\r\ncellsize 1.\r\n"
                                 "NODATA_value -9999.0\r\n"
                                 "     12.500  -9999.000     12.250\r\n"
                                 "      0.062     -0.000  99999.000\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ConvCli, NoDecimalsKeepThePoint)
{
    ToolRun run("-conv -decimal0 a.flt");
    run.give("a.flt", fltCells({{12, kNull, 0.5, 1.5}}));
    run.give("a.hdr", hdr(4, 1));
    run.start();
    EXPECT_TRUE(run.read("a.asc").ends_with("NODATA_value -9999.0\r\n    12. -9999.     0.     2.\r\n"));
}

TEST(ConvCli, ConvertsGridsOfAnySizeInOneRun)
{
    ToolRun run("-b -conv a.flt b.asc");
    run.give("a.flt", fltCells({{1, 2}}));
    run.give("a.hdr", hdr(2, 1, {.xll = 5, .null = -1}));
    run.give("b.asc", ascGrid({{1}, {2}, {3}}, {.cellsize = 4}));
    run.start();
    EXPECT_TRUE(run.says("Processing 2 input grids."));
    EXPECT_TRUE(run.says("Proecsing File:  2: b.asc"));
    EXPECT_EQ(run.grid("a.asc").xll, 5);
    EXPECT_EQ(run.grid("a.asc").null, -1);
    EXPECT_EQ(run.grid("b.flt").cellsize, 4);
    EXPECT_GRID(run, "a.asc", {{1, 2}});
    EXPECT_GRID(run, "b.flt", {{1}, {2}, {3}});
    EXPECT_EQ(run.read("b.hdr").substr(0, 16), "ncols 1\r\nnrows 3");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ConvCli, OneOutputNameForSeveralGridsKeepsTheLast)
{
    ToolRun run("-conv -out o a.flt b.flt");
    run.give("a.flt", fltCells({{1}}));
    run.give("a.hdr", hdr(1, 1));
    run.give("b.flt", fltCells({{2}}));
    run.give("b.hdr", hdr(1, 1));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Converting grid formats.",
                               "ERROR - Cannot use \"-out\" option when converting multiple grids.",
                               "Processing 2 input grids."});
    EXPECT_TRUE(run.says("Using output file name specified with -out switch: \"o\""));
    EXPECT_GRID(run, "o.asc", {{2}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ConvCli, OneGridMayHaveAnOutputNameAndSeveralMayHaveNone)
{
    for (const char* arguments : {"-conv -out o a.asc", "-conv a.asc b.asc"}) {
        ToolRun run(arguments);
        run.give("a.asc", ascGrid({{1}}));
        run.give("b.asc", ascGrid({{2}}));
        run.start();
        EXPECT_FALSE(run.says("ERROR - Cannot use \"-out\" option when converting multiple grids."));
        EXPECT_TRUE(run.reachedEnd());
    }
}

TEST(ConvCli, TheFormatOfTheInputIsRefusedAsFormatOfTheOutput)
{
    for (const char* arguments : {"-conv -asc a.asc", "-conv a.asc -out b.asc"}) {
        ToolRun run(arguments);
        run.give("a.asc", ascGrid({{1}}));
        run.start();
        EXPECT_CONSOLE_HOLDS(run,
                             errorEnd(closedUnit(1001), "ERROR - Input grid is .asc format and \"-asc\" specified."));
        EXPECT_NO_OTHER_FILES(run);
    }
    ToolRun run("-conv a.flt -flt");
    run.give("a.flt", fltCells({{1}}));
    run.give("a.hdr", hdr(1, 1));
    run.start();
    EXPECT_TRUE(run.says("ERROR - Input grid is .flt format and \"-flt\" specified."));
    EXPECT_NO_OTHER_FILES(run);

    ToolRun good("-conv a.flt -asc");
    good.give("a.flt", fltCells({{1}}));
    good.give("a.hdr", hdr(1, 1));
    good.start();
    EXPECT_GRID(good, "a.asc", {{1}});
}

TEST(ConvCli, ThereAndBackGivesTheSameCells)
{
    const Cells cells = {{0.125, -3.5, kNull}, {1000.875, 1e-3, 0}};
    ToolRun there("-conv a.asc");
    there.give("a.asc", ascGrid(cells));
    there.start();
    ToolRun back("-conv a.flt");
    back.give("a.flt", there.read("a.flt"));
    back.give("a.hdr", there.read("a.hdr"));
    back.start();
    EXPECT_GRID(back, "a.asc", cells);
}

TEST(ConvCli, ACentredHeaderIsWrittenAsItsCorner)
{
    ToolRun run("-conv a.asc");
    run.give("a.asc", "ncols 1\nnrows 1\nxllcenter 100\nyllcenter 50.5\ncellsize 2\n7\n");
    run.start();
    EXPECT_TRUE(run.read("a.hdr").starts_with("ncols 1\r\nnrows 1\r\nxllcorner 98.\r\nyllcorner 48.5\r\n"));
}

TEST(ConvCli, ACellSizeShowsItsSinglePrecision)
{
    ToolRun run("-conv a.asc");
    run.give("a.asc", ascGrid({{7}}, {.cellsize = 0.1}));
    run.start();
    EXPECT_NE(run.read("a.hdr").find("cellsize 0.1000000015\r\n"), std::string::npos);
}

TEST(ConvCli, AGridOfNullsOnlyIsWrittenInFull)
{
    ToolRun run("-conv a.flt");
    run.give("a.flt", fltCells({{kNull, kNull}, {kNull, kNull}}));
    run.give("a.hdr", hdr(2, 2));
    run.start();
    EXPECT_TRUE(run.read("a.asc").ends_with("-9999.0\r\n -9999.000 -9999.000\r\n -9999.000 -9999.000\r\n"));
}

TEST(ConvCli, TheProjectionGoesBesideTheOutput)
{
    ToolRun run("-conv d/a.asc");
    run.give("d/a.asc", ascGrid({{7}}));
    run.give("a.prj", "PROJCS[\"x\"]\n");
    run.start();
    EXPECT_EQ(run.read("d/a.prj"), "PROJCS[\"x\"]\r\n");
}

// Only the line with PROJCS is kept, also where the output's file is that of the input.
TEST(ConvCli, AProjectionOfSeveralLinesBecomesItsFirst)
{
    ToolRun run("-conv a.asc");
    run.give("a.asc", ascGrid({{7}}));
    run.give("a.prj", "PROJCS[\"x\",\n  GEOGCS[\"y\"],\n  UNIT[\"m\",1]]\n");
    run.start();
    EXPECT_EQ(run.read("a.prj"), "PROJCS[\"x\",\r\n");
}

TEST(ConvCli, AProjectionFileWithoutProjcsGivesNone)
{
    ToolRun run("-conv d/a.asc");
    run.give("d/a.asc", ascGrid({{7}}));
    run.give("a.prj", "GEOGCS[]\n");
    run.start();
    EXPECT_TRUE(run.says("WARNING - Unable to find PROJCS line in a.prj"));
    EXPECT_EQ(run.changedFiles(), (std::vector<std::string>{"d/a.flt", "d/a.hdr"}));
}

// The cells keep it, so they are null no more when they are read again.
TEST(ConvCli, TheHeaderHoldsOneDecimalOfTheNull)
{
    ToolRun run("-conv a.asc");
    run.give("a.asc", ascGrid({{1, -9999.25}}, {.null = -9999.25}));
    run.start();
    EXPECT_NE(run.read("a.hdr").find("NODATA_value -9999.2\r\n"), std::string::npos);
    EXPECT_EQ(run.read("a.flt"), fltCells({{1, -9999.25}}));
}

// The null is held in a field of 20, so a null of that size is written as a full field.
TEST(ConvCli, ANullThatIsTooWideForItsFieldIsAFieldOfStars)
{
    ToolRun run("-conv -decimal1 a.flt");
    run.give("a.flt", fltCells({{1, -3.4028234663852886e38}}));
    run.give("a.hdr", hdr(2, 1, {.null = -3.4028234663852886e38}));
    run.start();
    // `***...` of 20 characters, 1 decimal and 2: fields of 23.
    EXPECT_TRUE(run.read("a.asc").ends_with("NODATA_value " + std::string(20, '*') + "\r\n" + std::string(20, ' ') +
                                            "1.0" + std::string(23, '*') + "\r\n"));
}

TEST(ConvCli, WithoutProjectionAnOlderOneStays)
{
    ToolRun run("-conv d/a.asc");
    run.give("d/a.asc", ascGrid({{7}}));
    run.give("d/a.prj", "PROJCS[\"old\"]\n");
    run.start();
    EXPECT_EQ(run.changedFiles(), (std::vector<std::string>{"d/a.flt", "d/a.hdr"}));
}

// --- Cells that cannot be read ---------------------------------------------------------------------------------------

const std::string kHead = "ncols 3\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\n";
const char* const kBadCells =
    "ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS.";

TEST(ConvCli, RefusesTextCellsThatAreShortOrBad)
{
    for (const char* cells :
         {"1 2 3\n4 5\n", "1 2 3 4 5 6\n", "1 2 3\n4 5 x\n", "1 2 3\n4 5 0x6\n", "1 2 3\n4 5 6/\n", "1 2 3\n2*4 6\n",
          "1 2 3\n4 '5' 6\n", "1 2 3\n4 5 1e99\n", "1 2 3\n4 5 1.5.5\n", "", "\n\n", "1 2 3\n4 5 # 6\n"}) {
        ToolRun run("-conv a.asc");
        run.give("a.asc", kHead + cells + (*cells == '\0' ? " " : ""));
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_CONSOLE_HOLDS(run, errorEnd("Reading ASCII grid...", "", kBadCells)) << cells;
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(ConvCli, ReadsFreeFormCells)
{
    ToolRun run("-conv a.asc");
    run.give("a.asc", kHead + "1,2\n3 the rest of the row's last line\n\t-4.5e0 , +5.d1\r\n,\n");
    run.start();
    // The last value is empty, so its cell keeps the 0 of fresh memory.
    EXPECT_EQ(run.read("a.flt"), fltCells({{1, 2, 3}, {-4.5, 50, 0}}));
}

TEST(ConvCli, RefusesBinaryCellsThatAreShort)
{
    for (const std::size_t missing : {1U, 4U, 24U}) {
        const std::string bytes = fltCells({{1, 2, 3}, {4, 5, 6}});
        ToolRun run("-conv a.flt");
        run.give("a.flt", bytes.substr(0, bytes.size() - missing));
        run.give("a.hdr", hdr(3, 2));
        run.start();
        EXPECT_CONSOLE_HOLDS(run, errorEnd(openedUnit(1001), "", kBadCells));
        EXPECT_NO_OTHER_FILES(run);
    }
}

// More than is read at once, in both ways of reading: ahead, and step by step after a question.
TEST(ConvCli, RefusesManyBinaryCellsThatAreShort)
{
    constexpr std::size_t kSide = 700;
    for (const std::size_t missing : {1U, 4U, 1000000U}) {
        for (const bool isAsked : {false, true}) {
            ToolRun run("-conv a.flt");
            run.give("a.flt", std::string(kSide * kSide * sizeof(float) - missing, '\1'));
            run.give(isAsked ? "b.hdr" : "a.hdr", hdr(kSide, kSide));
            if (isAsked) {
                run.type("b.hdr");
            }
            run.start();
            EXPECT_CONSOLE_HOLDS(run, errorEnd(openedUnit(1001), "", kBadCells));
            EXPECT_NO_OTHER_FILES(run);
        }
    }
}

TEST(ConvCli, DoesNotLookBehindTheLastCell)
{
    ToolRun run("-conv a.flt");
    run.give("a.flt", fltCells({{1, 2, 3}}) + "more");
    run.give("a.hdr", hdr(3, 1));
    run.start();
    EXPECT_GRID(run, "a.asc", {{1, 2, 3}});
}

TEST(ConvCli, AGridTooLargeForMemoryEndsTheRun)
{
    ToolRun run("-conv a.flt");
    run.give("a.flt", "");
    run.give("a.hdr", hdr(2147483647, 2147483647));
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {"Allocating 0Kb memory for external grid...", "ERROR - Could not allocate enough memory (RAM)."});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ConvCli, AMissingHdrAsksForAnother)
{
    ToolRun run("-conv a.flt");
    run.give("a.flt", fltCells({{1, 2}}));
    run.give("b.hdr", hdr(2, 1));
    run.type("b.hdr");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {opening("a.hdr"), "CHECK 0008 - \"a.hdr\" cannot be found",
                               "Check file exists and press enter or enter another file name: ", openedInput("b.hdr"),
                               openedUnit(1001)});
    EXPECT_GRID(run, "a.asc", {{1, 2}});
}

TEST(ConvCli, ALineOf100MbIsReadInPieces)
{
    ToolRun run("-conv a.asc");
    std::string text = "ncols 3\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n1 2";
    text.append(100 << 20, ' ');
    text += "3\n";
    run.give("a.asc", text);
    run.start();
    EXPECT_EQ(run.read("a.flt"), fltCells({{1, 2, 3}}));
}

// --- Files that are no grid ------------------------------------------------------------------------------------------

TEST(ConvCli, AnEmptyFileAndAHeaderAloneAreRefused)
{
    for (const auto& [text, line] : std::vector<std::pair<std::string, std::string>>{
             {"", "Line = "}, {"ncols 3\nnrows 2", "Line = nrows 2"}, {kHead, "Line = cellsize 1"}}) {
        ToolRun run("-conv a.asc");
        run.give("a.asc", text);
        run.start();
        EXPECT_CONSOLE_HOLDS(
            run, errorEnd(openedUnit(1001), "", "ERROR 2334 - Reading Grid file header information.", line));
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(ConvCli, AFolderIsAskedForAsAMissingFile)
{
    ToolRun run("-conv d");
    run.give("d/x", "");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd(opening("d"), "CHECK 0008 - \"d\" cannot be found",
                                       "Check file exists and press enter or enter another file name: "));
}

TEST(ConvCli, AFileThatTheSystemRefusesToReadIsRefused)
{
    ToolRun run("-conv a.asc");
    std::filesystem::create_symlink("/proc/self/mem", run.folder() / "a.asc");
    run.start();
    EXPECT_TRUE(run.says("ERROR 2334 - Reading Grid file header information."));

    ToolRun cells("-conv a.flt");
    cells.give("a.hdr", hdr(2, 1));
    std::filesystem::create_symlink("/proc/self/mem", cells.folder() / "a.flt");
    cells.start();
    EXPECT_TRUE(cells.says(kBadCells));
}

TEST(ConvCli, ALastLineWithoutItsEndCounts)
{
    ToolRun run("-conv a.asc");
    run.give("a.asc", kHead + "1 2 3\r\n4 5 6");
    run.start();
    EXPECT_EQ(run.read("a.flt"), fltCells({{1, 2, 3}, {4, 5, 6}}));
}

TEST(ConvCli, ACellSizeThatIsNoNumberGoesThrough)
{
    ToolRun run("-conv a.asc");
    run.give("a.asc", "ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize NaN\n5\n");
    run.start();
    EXPECT_EQ(run.read("a.hdr"), "ncols 1\r\nnrows 1\r\nxllcorner 0.\r\nyllcorner 0.\r\ncellsize NaN\r\n"
                                 "NODATA_value -9999.0\r\nbyteorder LSBFIRST\r\n");
}

// --- Outputs that cannot be written ----------------------------------------------------------------------------------

TEST(ConvCli, AFullDiskIsNeverSilent)
{
    ToolRun run("-conv a.asc");
    run.give("a.asc", ascGrid({{1, 2}}));
    std::filesystem::create_symlink("/dev/full", run.folder() / "a.flt");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Finished writing FLT grid.", "ERROR - Could not write to file: a.flt"));

    ToolRun text("-conv a.flt");
    text.give("a.flt", fltCells({{1, 2}}));
    text.give("a.hdr", hdr(2, 1));
    std::filesystem::create_symlink("/dev/full", text.folder() / "a.asc");
    text.start();
    EXPECT_CONSOLE_HOLDS(text, errorEnd("Finished writing ASC grid.", "ERROR - Could not write to file: a.asc"));
}

TEST(ConvCli, AMissingOutputFolderWaitsForTheUser)
{
    ToolRun run("-conv a.asc -out no/b");
    run.give("a.asc", ascGrid({{1, 2}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd(cannotOpen("no/b.hdr"), "", "Can't open: no/b.hdr", "",
                                       "Another application or user maybe using it,",
                                       "   or the file's folder does not exist.",
                                       "If so, close the file or create file path.", "Press Enter to Continue"));
}

TEST(ConvCli, MoreDecimalsThanAFieldHoldsAreRefused)
{
    ToolRun run("-conv -decimal2147483647 a.flt");
    run.give("a.flt", fltCells({{1, 2}}));
    run.give("a.hdr", hdr(2, 1));
    run.start();
    EXPECT_TRUE(run.says("ERROR - Number of decimal places exceeds maximum: 1000000"));
    EXPECT_NO_OTHER_FILES(run);

    ToolRun binary("-conv -decimal2147483647 a.asc"); // which has no decimals
    binary.give("a.asc", ascGrid({{1, 2}}));
    binary.start();
    EXPECT_GRID(binary, "a.flt", {{1, 2}});
}

} // namespace
} // namespace gridforge::test
