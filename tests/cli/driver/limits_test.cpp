// Runs at the limits that a system sets: on memory, files, names and time.
#include "support/consoles.h"
#include "support/paths.h"
#include "support/process_limits.h"
#include "support/system_failures.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using namespace std::chrono_literals;
using namespace std::string_literals;

const Cells kCells = {{1, 2, kNull}, {4, 5, 6}};

// The tool behind a shell that sets the limits: `$TOOL` stands for it. Its standard input is empty.
struct LimitedRun : ToolRun {
    explicit LimitedRun(const std::string& script)
        : ToolRun(std::vector<std::string>{"-c", "TOOL='" + toolPath() + "'; " + script})
    {
        program("/bin/sh");
    }
};

constexpr std::int64_t kSide = 3000;
constexpr std::int64_t kBytes = kSide * kSide * sizeof(float); // 36 MB

// A grid of zeros, which takes no room on the disk.
void giveLargeFlt(ToolRun& run, const std::string& name)
{
    run.give(name + ".hdr", hdr(kSide, kSide));
    run.give(name + ".flt", "");
    std::filesystem::resize_file(run.folder() / (name + ".flt"), kBytes);
}

// --- Memory ----------------------------------------------------------------------------------------------------------

struct LargeRun : LimitedRun {
    explicit LargeRun(const std::string& limit)
        : LimitedRun("ulimit " + limit + "; exec $TOOL -b -max a.flt b.flt -out m.flt")
    {
        giveLargeFlt(*this, "a");
        giveLargeFlt(*this, "b");
        environment("GRIDFORGE_THREADS", "2"); // each takes some
    }
};

TEST(LimitsCli, MemoryForPiecesIsEnough)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has taken its memory before";
    }
    for (const char* limit : {"-v 60000", "-d 20000", "-d 3000"}) { // kB
        LargeRun run(limit);
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_TRUE(run.reachedEnd()) << run.console();
        EXPECT_TRUE(run.read("m.flt") == std::string(kBytes, '\0')); // without showing 36 MB
    }
}

TEST(LimitsCli, MemoryForNoPiece)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has taken its memory before";
    }
    LargeRun run("-d 2000");
    run.environment("GRIDFORGE_SCRATCH", "/nowhere"); // so that no file can hold it either
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Could not allocate enough memory (RAM)."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(LimitsCli, Stack)
{
    LimitedRun run("ulimit -s 256; for o in -max -statAll -conv; do $TOOL -b $o a.flt b.flt; done");
    giveFlt(run, "a", kCells);
    giveFlt(run, "b", {{2, 1, 3}, {3, 6, kNull}});
    run.start();
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "a(maxmax).flt", {{2, 2, 3}, {4, 6, 6}});
    EXPECT_GRID(run, "a.asc", kCells);
}

// --- Files -----------------------------------------------------------------------------------------------------------

TEST(LimitsCli, OpenFiles)
{
    LimitedRun run("ulimit -n 32; exec $TOOL -b -max 'g*.asc' -out m.flt");
    for (int i = 1000; i < 3000; ++i) {
        run.give("g" + std::to_string(i) + ".asc", ascGrid(kCells));
    }
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "m.flt", kCells);
}

// More binary grids than files may be open: they are read group by group, each as large as there is room for.
TEST(LimitsCli, OpenFilesOfBinaryGrids)
{
    LimitedRun run("ulimit -n 64; exec $TOOL -b -max 'g*.flt' -out m.flt");
    for (int i = 1000; i < 3000; ++i) {
        const double value = i;
        giveFlt(run, "g" + std::to_string(i), {{value, -value, i == 1500 ? 5 : kNull}});
    }
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "m.flt", {{2999, -1000, 5}});
}

TEST(LimitsCli, SizeOfAFile)
{
    const Cells cells(100, std::vector<double>(100, 7)); // 40 kB, and 20 kB as text
    for (const char* file : {"m.flt", "m.asc"}) {
        LimitedRun run(std::string("ulimit -f 8; exec $TOOL -b -max a.flt b.flt -out ") + file);
        giveFlt(run, "a", cells);
        giveFlt(run, "b", cells);
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Could not write to file: " + std::string(file)));
        const std::string left = run.read(file);
        EXPECT_TRUE(std::string(file) == "m.asc" ? left.starts_with('?') : left.size() < fltCells(cells).size());
    }
}

TEST(LimitsCli, SpaceAndQuota)
{
    for (const int error : {ENOSPC, EDQUOT}) {
        for (const char* out : {"m.flt", "m.asc"}) {
            ToolRun run(std::vector<std::string>{"-b", "-max", "a.flt", "b.flt", "-out", out});
            giveFlt(run, "a", kCells);
            giveFlt(run, "b", kCells);
            askSystem(run, "lack room " + std::to_string(error));
            run.start();
            EXPECT_EQ(run.status(), 0);
            EXPECT_EQ(run.error(), "");
            EXPECT_CONSOLE_HOLDS(
                run, errorEnd("ERROR - Could not write to file: " + std::string(out == "m.asc"s ? out : "m.hdr")));
        }
    }
}

TEST(LimitsCli, AFolderThatCannotBeWrittenTo)
{
    const bool isRoot = geteuid() == 0; // to whom all folders are open
    const std::string asUser = isRoot ? "exec setpriv --reuid=65534 --clear-groups $TOOL" : "exec $TOOL";
    LimitedRun run("chmod 555 in; chmod 755 .; " + asUser + " -b -conv in/a.asc");
    run.give("in/a.asc", ascGrid(kCells));
    run.start();
    std::filesystem::permissions(run.folder() / "in", std::filesystem::perms::owner_all);
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, errorEnd(cannotOpen("in/a.hdr"), "", "Can't open: in/a.hdr", "",
                                       "Another application or user maybe using it,",
                                       "   or the file's folder does not exist.",
                                       "If so, close the file or create file path.", "Press Enter to Continue"));
    EXPECT_FALSE(run.has("in/a.flt") || run.has("in/a.hdr"));
}

// The second input is a pipe, at which the run waits until the folder of the first is gone.
TEST(LimitsCli, AFolderThatGoesDuringTheRun)
{
    LimitedRun run("mkfifo b.asc; $TOOL -b -max gone/a.asc b.asc > console & exec 3> b.asc; rm -r gone; cat c.asc >&3; "
                   "exec 3>&-; wait; rm b.asc");
    run.give("gone/a.asc", ascGrid(kCells));
    run.give("c.asc", ascGrid(kCells));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_THAT(run.read("console"),
                HasSubstr(cannotOpen("gone/a(maxmax).asc") + "\n\nCan't open: gone/a(maxmax).asc\n"));
    EXPECT_FALSE(run.has("gone"));
}

// --- Names -----------------------------------------------------------------------------------------------------------

TEST(LimitsCli, ANameOf4000Characters)
{
    const std::string name(4000, 'n');
    ToolRun input(std::vector<std::string>{"-b", "-conv", name});
    input.start();
    EXPECT_EQ(input.status(), 0);
    EXPECT_CONSOLE_HOLDS(input, errorEnd(" ERROR - Invalid file or pathname specified"));
    ToolRun output(std::vector<std::string>{"-b", "-conv", "a.asc", "-out", name});
    output.give("a.asc", ascGrid(kCells));
    output.start();
    EXPECT_EQ(output.status(), 0);
    EXPECT_EQ(output.error(), "");
    EXPECT_THAT(output.console(), HasSubstr("...Can't Open\n\nCan't open: nnnn"));
    EXPECT_NO_OTHER_FILES(output);
}

TEST(LimitsCli, AWildcardAmong10000Files)
{
    LimitedRun run("mkdir in; cd in; seq 10000 | xargs touch; cp ../a.asc x1.asc; cp ../a.asc x2.asc; cd ..; "
                   "exec $TOOL -b -max 'in/x*.asc' -out m.asc");
    run.give("a.asc", ascGrid(kCells));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_TRUE(run.says("   File  1: in/x1.asc"));
    EXPECT_TRUE(run.says("   File  2: in/x2.asc"));
    EXPECT_GRID(run, "m.asc", kCells);
}

// --- Inputs and outputs that are no plain files ----------------------------------------------------------------------

TEST(LimitsCli, InputsFromPipes)
{
    LimitedRun run("mkfifo p.asc; cat b.asc > p.asc & $TOOL -b -max a.asc p.asc -out m.asc > console; wait; rm p.asc");
    run.give("a.asc", ascGrid(kCells));
    run.give("b.asc", ascGrid({{2, 1, 3}, {3, 6, kNull}}));
    run.start(20s);
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "m.asc", {{2, 2, 3}, {4, 6, 6}});
}

TEST(LimitsCli, InputsFromDevices)
{
    for (const char* device : {"/dev/null", "/dev/zero", "/dev/full"}) {
        LimitedRun run(std::string("ln -s ") + device + " d.asc; exec $TOOL -b -max a.asc d.asc -out m.asc");
        run.give("a.asc", ascGrid(kCells));
        run.start(60s);
        EXPECT_EQ(run.status(), 0);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR 2334 - Reading Grid file header information.", "Line = "));
        EXPECT_FALSE(run.has("m.asc"));
    }
}

// That a pipe is full is no event that its reader could wait for.
TEST(LimitsCli, AConsoleThatNobodyReadsForAWhile)
{
    LimitedRun run("yes a.asc | head -n 1500 | xargs $TOOL -b -change | { sleep 1; tail -n 1; }"); // some 100 kB
    run.give("a.asc", ascGrid(kCells));
    run.start(20s);
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, {kFinished});
}

TEST(LimitsCli, AConsoleOnAFullDisk)
{
    LimitedRun run("$TOOL -b -max a.asc b.asc -out m.asc > /dev/full; echo $?");
    run.give("a.asc", ascGrid(kCells));
    run.give("b.asc", ascGrid(kCells));
    run.start(20s);
    EXPECT_CONSOLE(run, {"0"});
    EXPECT_GRID(run, "m.asc", kCells);
}

TEST(LimitsCli, AConsoleThatIsTheGrid)
{
    for (const char* grid : {"m.asc", "m.flt"}) {
        LimitedRun run(std::string("$TOOL -b -max a.asc b.asc -out ") + grid + " > " + grid + "; echo $?");
        run.give("a.asc", ascGrid(kCells));
        run.give("b.asc", ascGrid(kCells));
        run.start(20s);
        EXPECT_EQ(run.error(), "");
        EXPECT_CONSOLE(run, {"0"});
        EXPECT_EQ(run.read("a.asc"), ascGrid(kCells));
    }
}

// --- Time and company ------------------------------------------------------------------------------------------------

TEST(LimitsCli, FilesFromBefore1970)
{
    LimitedRun run("touch -d 1960-05-04 a.asc b.asc .; exec $TOOL -b -max a.asc b.asc -out m.asc");
    run.give("a.asc", ascGrid(kCells));
    run.give("b.asc", ascGrid({{2, 1, 3}, {3, 6, kNull}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_GRID(run, "m.asc", {{2, 2, 3}, {4, 6, 6}});
}

// Each run leaves what it leaves alone, and nothing else is left.
TEST(LimitsCli, RunsThatShareAFolder)
{
    LimitedRun run("for i in 1 2 3 4 5 6 7 8; do $TOOL -b -max a.flt b.flt -out x$i.flt > console$i & "
                   "$TOOL -b -min a.flt b.flt -out y$i.asc > log$i & done; wait; rm console* log*");
    giveFlt(run, "a", kCells);
    giveFlt(run, "b", {{2, 1, 3}, {3, 6, kNull}});
    run.start();
    EXPECT_EQ(run.error(), "");
    for (int i = 1; i <= 8; ++i) {
        const std::string number = std::to_string(i);
        EXPECT_GRID(run, "x" + number + ".flt", {{2, 2, 3}, {4, 6, 6}});
        EXPECT_GRID(run, "y" + number + ".asc", {{1, 1, 3}, {3, 5, 6}});
    }
}

} // namespace
} // namespace gridforge::test
