// Calls of the system that fail, stop half way or are interrupted.
#include "support/consoles.h"
#include "support/shp_bytes.h"
#include "support/system_failures.h"

#include <cerrno>
#include <csignal>
#include <map>
#include <utility>

namespace gridforge::test {
namespace {

const Cells kCells = {{1, 2, kNull}, {4, 5, 6}};

std::string fail(const std::string& function, int number, int error)
{
    return "fail " + function + " " + std::to_string(number) + " " + std::to_string(error);
}

// Writes kCells, always step by step.
struct GridRun : ToolRun {
    explicit GridRun(const std::string& mission) : ToolRun("-b -xyz a.xyz -out a.flt")
    {
        give("a.xyz", "0 1 1\n1 1 2\n2 1 -9999\n0 0 4\n1 0 5\n2 0 6\n");
        askSystem(*this, mission);
        start();
        EXPECT_EQ(status(), 0);
        EXPECT_EQ(error(), "");
    }
};

void expectGood(const std::string& mission)
{
    const GridRun run(mission);
    EXPECT_TRUE(run.reachedEnd()) << mission;
    EXPECT_GRID(run, "a.flt", kCells);
    EXPECT_NO_OTHER_FILES(run);
}

// The first file written is the .hdr, the second the .flt.
TEST(SystemCli, AFailedWriteEndsTheRun)
{
    for (const int error : {ENOSPC, EIO}) {
        const GridRun run(fail("write", 2, error));
        EXPECT_CONSOLE_HOLDS(run, errorEnd("Finished writing FLT grid.", "ERROR - Could not write to file: a.flt"));
    }
}

TEST(SystemCli, AFailedCloseOfAnOutputEndsTheRun)
{
    const GridRun cells(fail("close", 3, EIO)); // the points are closed twice: they are looked at before they are read
    EXPECT_CONSOLE_HOLDS(cells, errorEnd("Finished writing FLT grid.", "ERROR - Could not write to file: a.flt"));
    // The file of the header is closed when the cells are there.
    const GridRun header(fail("close", 4, EIO));
    EXPECT_CONSOLE_HOLDS(header, errorEnd(closedUnit(1001), "ERROR - Could not write to file: a.hdr"));
}

TEST(SystemCli, AFailedWriteOfTheFirstLetterEndsTheRun)
{
    const GridRun run(fail("pwrite", 1, EIO));
    EXPECT_CONSOLE_HOLDS(run, errorEnd(closedUnit(1001), "ERROR - Could not write to file: a.hdr"));
}

TEST(SystemCli, AFailedCloseOfAnInputIsIgnored)
{
    for (const int number : {1, 2}) {
        expectGood(fail("close", number, EIO));
    }
}

// What is read of the header before the run tells of it may fail.
TEST(SystemCli, AFailedReadEndsTheRun)
{
    int ends = 0;
    for (int number = 1; number <= 10; ++number) {
        ToolRun run("-b -conv a.asc");
        run.give("a.asc", ascGrid(kCells));
        askSystem(run, fail("read", number, EIO));
        run.start();
        if (!run.reachedEnd()) {
            ++ends;
            EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR 2334 - Reading Grid file header information.", "Line = "));
        }
    }
    EXPECT_EQ(ends, 1);
}

// They stay in their file until they become text.
TEST(SystemCli, AFailedReadOfCellsEndsTheRun)
{
    int ends = 0;
    for (int number = 1; number <= 8; ++number) {
        ToolRun run("-b -conv a.flt");
        run.give("a.hdr", hdr(2, 3));
        run.give("a.flt", fltCells({{1, 2}, {3, 4}, {5, 6}}));
        askSystem(run, fail("pread", number, EIO));
        run.start();
        if (!run.reachedEnd()) {
            ++ends;
            EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR 2334 - Reading Grid file data.  Check format and file is "
                                               "complete by viewing in GIS."));
        }
    }
    EXPECT_GE(ends, 3); // the rows
}

// The answer is there all the same, and a second read would find it.
TEST(SystemCli, AFailedReadOfAnAnswerEndsTheRun)
{
    ToolRun run("-conv a.flt");
    run.give("a.flt", fltCells({{1, 2}}));
    run.give("b.hdr", hdr(2, 1));
    run.type("b.hdr");
    askSystem(run, fail("read", 1, EIO));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd(opening("a.hdr"), "CHECK 0008 - \"a.hdr\" cannot be found",
                                       "Check file exists and press enter or enter another file name: "));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(SystemCli, HintsMayFail)
{
    expectGood(fail("fadvise", 1, EINVAL));
    expectGood(fail("madvise", 1, EINVAL));
    expectGood(fail("fallocate", 1, EOPNOTSUPP));
}

// Cells that wait in a file may find it full: then they are computed once more, when it is their turn.
TEST(SystemCli, CellsThatCannotWaitAreComputedLater)
{
    for (const std::string operation : {"-max", "-dif"}) {
        ToolRun run(("-b " + operation + " a.flt b.flt -out m.flt").c_str());
        giveFlt(run, "a", {{1, 2, kNull}, {4, 5, 6}});
        giveFlt(run, "b", {{0, 1, kNull}, {2, 2, 2}});
        askSystem(run, fail("pwrite", 1, ENOSPC), "calls.log");
        run.start();
        EXPECT_TRUE(run.reachedEnd()) << run.console();
        EXPECT_NE(run.read("calls.log").find("pwrite"), std::string::npos);
        if (operation == "-max") {
            EXPECT_GRID(run, "m.flt", {{1, 2, kNull}, {4, 5, 6}});
        } else {
            EXPECT_GRID(run, "m.flt", {{1, 1, kNull}, {2, 3, 4}});
        }
    }
}

TEST(SystemCli, ShortReadsAndWritesAreGoneOnWith)
{
    expectGood("short read 1");
    expectGood("short write 1");
    expectGood("short write 2");
    for (int seed = 1; seed <= 10; ++seed) {
        expectGood("disturb " + std::to_string(seed));
    }
}

TEST(SystemCli, InterruptedCallsAreMadeAgain)
{
    for (const char* function : {"open", "read", "write", "close"}) {
        for (int number = 1; number <= 3; ++number) {
            expectGood(fail(function, number, EINTR));
        }
    }
}

TEST(SystemCli, AnInterruptedCutOfAShapefileIsMadeAgain)
{
    ToolRun run("-b -cp l.shp -cpsd4 dem.asc");
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveShapefile(
        run, "l", 1,
        {.objects = {pointRecord(4.3, 4.4)}, .columns = {{"OBS", 'N', 4}, {"MARK", 'C', 4}}, .values = {"  40left"}});
    run.give("l_Res_P.shp", std::string(1000, 'x'));
    askSystem(run, fail("ftruncate", 1, EINTR));
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_EQ(run.read("l_Res_P.shp").substr(100), big(1) + big(10) + pointRecord(4.3, 4.4));
}

TEST(SystemCli, AProjectionThatTheSystemCannotTellOfIsOpenedAllTheSame)
{
    ToolRun run("-b -conv a.asc");
    run.give("a.asc", ascGrid(kCells));
    run.give("a.prj", "PROJCS[\"Test\"]\n");
    askSystem(run, fail("stat", 2, EIO)); // the first looks for the grid
    run.start();
    EXPECT_TRUE(run.says("Using a.prj for setting projection."));
    EXPECT_TRUE(run.reachedEnd());
}

// --- Runs that are killed --------------------------------------------------------------------------------------------

// The files after a kill of the run at the call that is the `event`-th to change a file.
std::map<std::string, std::string> filesAfterKill(ToolRun& run, int event, const std::string& when)
{
    askSystem(run, "kill " + std::to_string(event) + " " + when);
    run.startForSignal();
    EXPECT_EQ(run.status(), 128 + SIGKILL);
    return run.files();
}

const std::string kWholeAsc = "ncols 2\r\nnrows 1\r\nxllcorner 0.\r\nyllcorner 0.\r\ncellsize 1.\r\n"
                              "NODATA_value -9999.0\r\n   1.500  12.500\r\n";

// It is opened, written, its first letter is written, and it is closed.
TEST(SystemCli, AnAscLooksWholeNoSoonerThanItIs)
{
    const auto kill = [](int event, const std::string& when) {
        ToolRun run("-b -conv a.flt");
        run.give("a.flt", fltCells({{1.5, 12.5}}));
        run.give("a.hdr", hdr(2, 1));
        return filesAfterKill(run, event, when)["a.asc"];
    };
    EXPECT_EQ(kill(2, "before"), "");
    // Two digits short it would be read as 12.5, four as 12.
    EXPECT_EQ(kill(2, "within " + std::to_string(kWholeAsc.size() - 6)),
              "?" + kWholeAsc.substr(1, kWholeAsc.size() - 7));
    EXPECT_EQ(kill(3, "before"), "?" + kWholeAsc.substr(1));
    EXPECT_EQ(kill(3, "after"), kWholeAsc);
}

using HeaderAndSize = std::pair<std::string, std::size_t>;

HeaderAndSize filesOfConversion(int event, const std::string& when, const std::string& otherName)
{
    ToolRun run("-b -conv a.asc");
    run.give("a.asc", ascGrid(kCells));
    run.give("a.flt", fltCells({{1, 2}, {3, 4}, {5, 6}}));
    run.give("a.hdr", hdr(2, 3));
    if (!otherName.empty()) {
        std::filesystem::create_hard_link(run.folder() / "a.flt", run.folder() / otherName);
    }
    auto files = filesAfterKill(run, event, when);
    return {files["a.hdr"], files["a.flt"].size()};
}

const std::string kHeader = "ncols 3\r\nnrows 2\r\nxllcorner 0.\r\nyllcorner 0.\r\ncellsize 1.\r\nNODATA_value "
                            "-9999.0\r\nbyteorder LSBFIRST\r\n";

// The cells wait in a file without a name, which is opened, given its room and written. The .hdr is opened and written, the .flt
// opened. The file with the cells is cut to its size, gets a passing name and then that of the .flt; the old one and itself are
// closed. Then the first letter of the .hdr is written, and it is closed.
TEST(SystemCli, AHeaderLooksWholeNoSoonerThanItsCells)
{
    const auto kill = [](int event, const std::string& when) { return filesOfConversion(event, when, ""); };
    EXPECT_EQ(kill(4, "after"), HeaderAndSize("", 24));
    EXPECT_EQ(kill(5, "after"), HeaderAndSize("?" + kHeader.substr(1), 24));
    EXPECT_EQ(kill(6, "after"), HeaderAndSize("?" + kHeader.substr(1), 0));
    EXPECT_EQ(kill(8, "after"), HeaderAndSize("?" + kHeader.substr(1), 0));
    EXPECT_EQ(kill(9, "after"), HeaderAndSize("?" + kHeader.substr(1), 24));
    EXPECT_EQ(kill(11, "after"), HeaderAndSize("?" + kHeader.substr(1), 24));
    EXPECT_EQ(kill(12, "after"), HeaderAndSize(kHeader, 24));
}

// A .flt with another name is not replaced: it is opened, given its room and written.
TEST(SystemCli, AHeaderLooksWholeNoSoonerThanCellsThatAreCopied)
{
    const auto kill = [](int event, const std::string& when) { return filesOfConversion(event, when, "b.flt"); };
    EXPECT_EQ(kill(4, "after"), HeaderAndSize("", 24));
    EXPECT_EQ(kill(6, "after"), HeaderAndSize("?" + kHeader.substr(1), 0));
    EXPECT_EQ(kill(9, "within 12"), HeaderAndSize("?" + kHeader.substr(1), 12));
    EXPECT_EQ(kill(10, "after"), HeaderAndSize("?" + kHeader.substr(1), 24));
    EXPECT_EQ(kill(11, "after"), HeaderAndSize(kHeader, 24));
}

} // namespace
} // namespace gridforge::test
