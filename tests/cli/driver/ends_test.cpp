// The ends of a run and their pauses, with standard input open and closed.
#include "support/consoles.h"
#include "support/expect_run.h"
#include "support/paths.h"

#include <csignal>
#include <fstream>

namespace gridforge::test {
namespace {

using namespace std::chrono_literals;

// The tool behind a shell that sets the stage: `$TOOL` stands for it.
struct StagedRun : ToolRun {
    explicit StagedRun(const std::string& script)
        : ToolRun(std::vector<std::string>{"-c", "TOOL='" + toolPath() + "'; " + script})
    {
        program("/bin/sh");
        give("a.asc", ascGrid({{1}}));
    }
};

// Standard input stays open and says nothing.
const std::string kSilentInput = "mkfifo in && exec <>in && exec $TOOL ";

bool waits(const std::string& arguments)
{
    StagedRun run(kSilentInput + arguments);
    return run.stillRunsAfter(500ms);
}

const std::string kExpansion = kWildcards;

TEST(Ends, UsageWaitsForEnter)
{
    EXPECT_TRUE(waits(""));
}

TEST(Ends, ExitsWaitsForEnter)
{
    EXPECT_TRUE(waits("a.asc"));
}

TEST(Ends, ExitsWaitsInBatchModeToo)
{
    EXPECT_TRUE(waits("-b"));
    EXPECT_TRUE(waits("-b -change missing.asc"));
}

TEST(Ends, PauseExitWaitsForEnter)
{
    EXPECT_TRUE(waits("-q"));
    EXPECT_TRUE(waits("-b -q"));
}

TEST(Ends, NormalEndWaitsForEnter)
{
    EXPECT_TRUE(waits("-change a.asc"));
}

TEST(Ends, WarningsWaitInBatchModeToo)
{
    EXPECT_TRUE(waits("-b -change -grc a.asc"));
}

TEST(Ends, NormalEndInBatchModeDoesNotWait)
{
    StagedRun run(kSilentInput + "-change -b a.asc");
    run.start(20s);
    EXPECT_EQ(run.status(), 0);
    EXPECT_CONSOLE(run, joined({startOf({"a.asc"}), {kFinished}}));
}

TEST(Ends, FreeboardAndBufferErrorsDoNotWait)
{
    for (const std::string argument : {"-fb-1", "-bd0"}) {
        StagedRun run(kSilentInput + argument);
        run.start(20s);
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.consoleLines().size(), 3U); // banner, check, error
    }
}

TEST(Ends, EnterEndsTheWait)
{
    for (const std::string arguments : {"", "a.asc", "-q", "-change a.asc"}) {
        StagedRun run("mkfifo in && exec <>in && echo >in && exec $TOOL " + arguments);
        run.start(20s);
        EXPECT_EQ(run.status(), 0) << arguments;
    }
}

// The ends with standard input empty are those of every other test here; this is a descriptor that does not exist.
TEST(Ends, StandardInputThatIsClosedCountsAsEnter)
{
    for (const std::string arguments : {"", "a.asc", "-q", "-change -grc a.asc"}) {
        StagedRun run("exec $TOOL " + arguments + " <&-");
        run.start(20s);
        EXPECT_EQ(run.status(), 0) << arguments;
        EXPECT_EQ(run.error(), "") << arguments;
    }
}

TEST(Ends, NormalEndSaysFinishedAndPauses)
{
    ToolRun run("-change a.asc");
    run.give("a.asc", ascGrid({{1}}));
    expectRun(run, finished({kExpansion, "Input File  1: a.asc", "   File  1: a.asc"}));
}

TEST(Ends, ConsoleIsOutBeforeTheWait)
{
    const Lines console = refused({"ERROR - Incorrect flag specified: \"-q\""});
    StagedRun run("mkfifo in out; { $TOOL -q <>in >out & } ; head -n " + std::to_string(console.size()) +
                  " out; kill $!");
    run.start(20s);
    EXPECT_CONSOLE(run, console);
}

TEST(Ends, ConsoleThatNobodyReadsDoesNotStopTheRun)
{
    StagedRun run("{ $TOOL -change a.asc; echo $? >status; } | true; cat status");
    run.start(20s);
    EXPECT_CONSOLE(run, {"0"});
}

TEST(Ends, StandardOutputThatIsClosedDoesNotStopTheRun)
{
    StagedRun run("$TOOL -change a.asc >&-; echo $?");
    run.start(20s);
    EXPECT_CONSOLE(run, {"0"});
}

// A closed stream must not lend its number to a file of the run.
TEST(Ends, StreamsThatAreClosedKeepTheConsoleOutOfTheFiles)
{
    StagedRun run(
        "for i in $(seq 1000 1400); do printf 'ncols 1\\nnrows 1\\nxllcorner 0\\nyllcorner 0\\ncellsize 1\\n7\\n' "
        ">g$i.asc; done; $TOOL -conv g*.asc >&- <&-; cat g*.hdr | sort | uniq -c");
    run.start(60s);
    EXPECT_EQ(run.status(), 0);
    EXPECT_CONSOLE(run, {"    401 NODATA_value -9999.0\r", "    401 byteorder LSBFIRST\r", "    401 cellsize 1.\r",
                         "    401 ncols 1\r", "    401 nrows 1\r", "    401 xllcorner 0.\r", "    401 yllcorner 0.\r"});
}

} // namespace
} // namespace gridforge::test
