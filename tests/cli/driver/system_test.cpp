// Calls of the system that fail, stop half way or are interrupted.
#include "support/shp_bytes.h"
#include "support/system_failures.h"

#include <cerrno>

namespace gridforge::test {
namespace {

const Cells kCells = {{1, 2, kNull}, {4, 5, 6}};

std::string fail(const std::string& function, int number, int error)
{
    return "fail " + function + " " + std::to_string(number) + " " + std::to_string(error);
}

struct ConvRun : ToolRun {
    explicit ConvRun(const std::string& mission) : ToolRun("-b -conv a.asc")
    {
        give("a.asc", ascGrid(kCells));
        askSystem(*this, mission);
        start();
        EXPECT_EQ(status(), 0);
        EXPECT_EQ(error(), "");
    }
};

void expectGood(const std::string& mission)
{
    const ConvRun run(mission);
    EXPECT_TRUE(run.says("Finished.")) << mission;
    EXPECT_GRID(run, "a.flt", kCells);
    EXPECT_NO_OTHER_FILES(run);
}

// The first file written is the .hdr, the second the .flt.
TEST(SystemCli, AFailedWriteEndsTheRun)
{
    for (const int error : {ENOSPC, EIO}) {
        const ConvRun run(fail("write", 2, error));
        EXPECT_CONSOLE_HOLDS(
            run, {"Finished writing FLT grid.", "ERROR - Could not write to file: a.flt", "", "Press Enter to Close"});
    }
}

TEST(SystemCli, AFailedCloseOfAnOutputEndsTheRun)
{
    const ConvRun cells(fail("close", 3, EIO));
    EXPECT_CONSOLE_HOLDS(
        cells, {"Finished writing FLT grid.", "ERROR - Could not write to file: a.flt", "", "Press Enter to Close"});
}

TEST(SystemCli, AFailedCloseOfAnInputIsIgnored)
{
    expectGood(fail("close", 1, EIO));
}

TEST(SystemCli, AFailedReadEndsTheRun)
{
    const ConvRun run(fail("read", 1, EIO));
    EXPECT_CONSOLE_HOLDS(run,
                         {"ERROR 2334 - Reading Grid file header information.", "Line = ", "", "Press Enter to Close"});
}

TEST(SystemCli, HintsMayFail)
{
    expectGood(fail("advise", 1, EINVAL));
    expectGood(fail("fallocate", 1, EOPNOTSUPP));
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
    run.give("l.shp", shpBytes(1, {pointRecord(4.3, 4.4)}));
    run.give("l.dbf", dbfHeader(1, {{"OBS", 'N', 4}, {"MARK", 'C', 4}}) + "   40left\x1A");
    run.give("l.prj", "PROJCS[\"Test\"]\n");
    run.give("l_Res_P.shp", std::string(1000, 'x'));
    askSystem(run, fail("ftruncate", 1, EINTR));
    run.start();
    EXPECT_TRUE(run.says("Finished."));
    EXPECT_EQ(run.read("l_Res_P.shp").substr(100), big(1) + big(10) + pointRecord(4.3, 4.4));
}

} // namespace
} // namespace gridforge::test
