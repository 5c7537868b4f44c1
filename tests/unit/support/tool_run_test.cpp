// The harness of the command-line tests, tried on programs whose behaviour is known.
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using namespace std::chrono_literals;

// A run of the shell in place of the tool.
struct ShellRun : ToolRun {
    explicit ShellRun(const std::string& script) : ToolRun(std::vector<std::string>{"-c", script})
    {
        program("/bin/sh");
    }
};

TEST(ToolRun, SplitsArgumentsAtBlanks)
{
    ToolRun run("one  two");
    run.program("/bin/echo");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, {"one two"});
}

TEST(ToolRun, HandsOverRawBytes)
{
    ToolRun run({"%s|", "a b", "\x96$HOME", "'"});
    run.program("/usr/bin/printf");
    run.start();
    EXPECT_EQ(run.console(), "a b|\x96$HOME|'|");
    EXPECT_THAT(run.command(), HasSubstr(R"(/usr/bin/printf $'%s|' $'a b' $'\x96$HOME' $'\'')"));
}

TEST(ToolRun, KeepsConsoleErrorAndStatusApart)
{
    ShellRun run("echo out; echo err >&2; exit 3");
    run.start();
    EXPECT_EQ(run.status(), 3);
    EXPECT_EQ(run.console(), "out\n");
    EXPECT_EQ(run.error(), "err\n");
}

TEST(ToolRun, TypesLinesAndThenEnds)
{
    ToolRun run("");
    run.program("/bin/cat");
    run.type("first");
    run.type("");
    run.type("third");
    run.start();
    EXPECT_CONSOLE(run, {"first", "", "third"});
}

TEST(ToolRun, StandardInputIsEmptyWithoutTypedLines)
{
    ToolRun run("");
    run.program("/bin/cat");
    run.start(5s);
    EXPECT_EQ(run.console(), "");
}

TEST(ToolRun, TakesMoreOutputThanAPipeHolds)
{
    ShellRun run("yes 0123456 | head -n 100000; yes 0123456 | head -n 100000 >&2");
    run.start();
    EXPECT_EQ(run.console().size(), 800000U);
    EXPECT_EQ(run.error().size(), 800000U);
}

TEST(ToolRun, ListsWhatTheRunWroteOrChanged)
{
    ShellRun run("echo new > made; echo other > changed; mkdir folder; echo x > folder/inner; cat kept");
    run.give("changed", "first\n");
    run.give("kept", "same\n");
    run.start();
    EXPECT_THAT(run.changedFiles(), ElementsAre("changed", "folder/", "folder/inner", "made"));
    EXPECT_EQ(run.read("made"), "new\n");
    EXPECT_THAT(run.otherFiles(), ElementsAre("changed", "folder/", "folder/inner"));
    EXPECT_NONFATAL_FAILURE(EXPECT_NO_OTHER_FILES(run), "the run also wrote");
    EXPECT_TRUE(run.has("changed"));
    EXPECT_TRUE(run.has("folder/inner"));
    run.expectFile("folder/");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(ToolRun, WorksInAFolderOfItsOwn)
{
    ShellRun run("cat ../a; echo b > b");
    run.give("a", "from above\n");
    run.workIn("sub");
    run.start();
    EXPECT_CONSOLE(run, {"from above"});
    EXPECT_THAT(run.changedFiles(), ElementsAre("sub/b"));
}

TEST(ToolRun, StopsARunWithoutEnd)
{
    ShellRun silent("exec sleep 1000");
    EXPECT_NONFATAL_FAILURE(silent.start(100ms), "no end within 100 ms");
    ShellRun talking("exec yes");
    EXPECT_TRUE(talking.stillRunsAfter(100ms));
    ShellRun deaf("exec >/dev/null 2>&1; exec sleep 1000");
    EXPECT_TRUE(deaf.stillRunsAfter(100ms));
    ShellRun quick("exit 0");
    EXPECT_FALSE(quick.stillRunsAfter(20s));
}

TEST(ToolRun, ARunEndedByASignalFailsTheTest)
{
    ShellRun run("kill -SEGV $$");
    EXPECT_NONFATAL_FAILURE(run.start(), "ended by signal 11");
    EXPECT_EQ(run.status(), 139);
}

TEST(ToolRun, ConsoleChecksAreExact)
{
    ShellRun run("echo one; echo; echo ' two'");
    run.start();
    EXPECT_CONSOLE(run, {"one", "", " two"});
    EXPECT_CONSOLE_HOLDS(run, {"", " two"});
    EXPECT_TRUE(run.says(" two"));
    EXPECT_FALSE(run.says("two"));
    EXPECT_FALSE(consoleIs(run, {"one", " two"}));
    EXPECT_FALSE(consoleIs(run, {"one", "", " two", ""}));
    EXPECT_FALSE(consoleHolds(run, {"one", " two"}));
    EXPECT_FALSE(consoleHolds(run, {"tw"}));
}

TEST(ToolRun, GridsAreComparedCellByCell)
{
    ShellRun run("cp given.asc out.asc; cp given.flt out.flt; cp given.hdr out.hdr");
    const Cells cells{{1, 2.5, kNull}, {0.1, -3, 1e6}};
    run.give("given.asc", ascGrid(cells, {.lineEnd = "\r\n"}));
    run.give("given.flt", fltCells(cells));
    run.give("given.hdr", hdr(cells, {.xll = 5, .cellsize = 0.5, .lineEnd = "\r\n"}));
    run.start();
    EXPECT_GRID(run, "out.asc", {{1, 2.5, kNull}, {0.1, -3, 1e6}});
    EXPECT_GRID(run, "out.flt", {{1, 2.5, kNull}, {0.1, -3, 1e6}});
    EXPECT_NO_OTHER_FILES(run);
    EXPECT_EQ(run.grid("out.flt").xll, 5);
    EXPECT_EQ(run.grid("out.flt").cellsize, 0.5);
    EXPECT_FALSE(gridIs(run, "out.asc", {{1, 2.5, kNull}, {0.1, -3, 2e6}}));
    EXPECT_FALSE(gridIs(run, "out.asc", {{0.1, -3, 1e6}, {1, 2.5, kNull}}));
    EXPECT_FALSE(gridIs(run, "out.flt", {{1, 2.5}, {0.1, -3}}));
    EXPECT_FALSE(gridIs(run, "none.asc", {{1}}));
}

TEST(TestGrids, AreWrittenNorthRowFirst)
{
    EXPECT_EQ(ascGrid({{21, 22}, {11, 12.5}}, {.xll = 100.25, .cellsize = 2}),
              "ncols 2\nnrows 2\nxllcorner 100.25\nyllcorner 0\ncellsize 2\nNODATA_value -9999\n21 22\n11 12.5\n");
    EXPECT_EQ(fltCells({{1}, {-2}}), std::string("\0\0\x80\x3F\0\0\0\xC0", 8));
    EXPECT_EQ(hdr(2, 1),
              "ncols 2\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\nbyteorder LSBFIRST\n");
}

TEST(TestGrids, ReadingBackRefusesWhatTheWriterWouldNotWrite)
{
    const std::string header =
        "ncols 2\r\nnrows 1\r\nxllcorner 0.\r\nyllcorner 0.\r\ncellsize 1.\r\nNODATA_value -9999.0\r\n";
    EXPECT_EQ(readWrittenAsc(header + "  1.000  2.000\r\n").cells, (Cells{{1, 2}}));
    EXPECT_NONFATAL_FAILURE(readWrittenAsc(header + "  1.000  2.000\n"), "without CR LF");
    EXPECT_NONFATAL_FAILURE(readWrittenAsc(header + "  1.000\r\n"), "in line 1");
    EXPECT_NONFATAL_FAILURE(readWrittenAsc(header + "  1.000 ****\r\n"), "not a number");
    EXPECT_NONFATAL_FAILURE(readWrittenFlt(header + "byteorder LSBFIRST\r\n", "1234567"), "7 bytes");
    EXPECT_NONFATAL_FAILURE(readWrittenFlt(header + "byteorder MSBFIRST\r\n", "12345678"), "MSBFIRST");
}

} // namespace
} // namespace gridforge::test
