#include "ops/trim.h"

#include "core/text.h"
#include "host/console.h"
#include "host/system.h"
#include "run/cells_ahead.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/layer_files.h"
#include "support/operation_run.h"
#include "support/refusing_system.h"

#include <cstdint>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

// The console of a trim by so many triangles, of cells that wait in a file and cannot be read back.
std::string consoleWithoutWaitingCells(const std::string& grid, int regions)
{
    const Environment inFiles({{"GRIDFORGE_MEMORY", "1"}});
    const ScratchFolder folder;
    std::string body;
    for (int i = 0; i < regions; ++i) {
        body += "Region 1\n4\n2 2\n2 6\n6 2\n2 2\n";
    }
    giveMif(folder, "r", body, regions);
    folder.give("a.asc", ascGrid(rowColumnCells()));
    folder.give("a.hdr", hdr(rowColumnCells()));
    folder.give("a.flt", fltCells(rowColumnCells()));
    const ChildRun run = runInChild(folder, [&] {
        refuseReadsOfWaitingCells();
        run::InputFileList inputs;
        inputs.add(grid);
        ops::runTrim({}, {.layer = "r.mif"}, inputs);
    });
    EXPECT_TRUE(run.ended);
    return run.console;
}

TEST(RunTrim, ReportsCellsThatWaitAndCannotBeReadAsSuch)
{
    const std::string end =
        "Allocating 0Kb memory for storing output grid...\n" +
        errorEndText("ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS.");
    EXPECT_THAT(consoleWithoutWaitingCells("a.asc", 1), testing::EndsWith(end));
    EXPECT_THAT(consoleWithoutWaitingCells("a.flt", 17), testing::EndsWith(end));
}

// A cut that finds no room ahead of the story is made in it.
TEST(RunTrim, CutsStepByStepWhereACutFindsNoRoom)
{
    const Environment inFiles({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "."}});
    const auto run = [](const ScratchFolder& folder, int good) {
        giveMif(folder, "r", "Region 1\n4\n2 2\n2 6\n6 2\n2 2\nRegion 1\n4\n1 1\n1 4\n4 1\n1 1\n", 2);
        folder.give("a.hdr", hdr(rowColumnCells()));
        folder.give("a.flt", fltCells(rowColumnCells()));
        return runInChild(folder, [good] {
            refuseOneUnnamedFileAfter(good);
            run::InputFileList inputs;
            inputs.add("a.flt");
            const std::size_t ahead = waysGone(run::Way::ahead);
            const std::size_t noRoom = waysGone(run::Way::noRoom);
            ops::runTrim({.out = {}, .format = grid::Format::asc}, {.layer = "r.mif"}, inputs);
            say("ways: ", waysGone(run::Way::ahead) - ahead, ' ', waysGone(run::Way::noRoom) - noRoom);
        });
    };
    const ScratchFolder whole;
    const ChildRun ahead = run(whole, -1);
    EXPECT_FALSE(ahead.ended);
    EXPECT_THAT(ahead.console, testing::EndsWith("ways: 1 0\n"));
    for (const int good : {0, 1}) { // cuts that have room
        const ScratchFolder folder;
        const ChildRun stepped = run(folder, good);
        EXPECT_FALSE(stepped.ended) << stepped.console;
        const std::size_t told = ahead.console.rfind("ways: ");
        EXPECT_EQ(stepped.console, ahead.console.substr(0, told) + "ways: 0 1\n");
        EXPECT_EQ(filesIn(folder.path()), filesIn(whole.path()));
    }
}

// What the system is told of bytes that will be read, by a trim of the binary grid a by a square from 1.5 to 4.5 and from 1.5 to
// 3.5 of cells of size 1: its window is columns 1 to 5 and rows 1 to 4, from the south.
std::string hintsOfTrim(const ScratchFolder& folder)
{
    giveMif(folder, "r", "Region 1\n5\n1.5 1.5\n4.5 1.5\n4.5 3.5\n1.5 3.5\n1.5 1.5\n");
    const ChildRun run = runInChild(folder, [&] {
        static std::string hints;
        static System noting = nativeSystem();
        noting.willRead = [](SystemFile, std::int64_t position, std::int64_t count, ReadOf of) {
            hints += join(count, " bytes from ", position, of == ReadOf::parts ? ", parts of them\n" : "\n");
        };
        useSystem(noting);
        run::InputFileList inputs;
        inputs.add("a.flt");
        ops::runTrim({}, {.layer = "r.mif"}, inputs);
        std::ofstream("hints.txt", std::ios::binary) << hints;
    });
    EXPECT_FALSE(run.ended) << run.console;
    return folder.read("hints.txt");
}

TEST(RunTrim, TellsTheSystemOfTheRowsThatItWillRead)
{
    const ScratchFolder folder;
    giveFlt(folder, "a", rowColumnCells());
    // Of 9 rows of 9 cells, the north row first, the 4 behind the first 5.
    EXPECT_EQ(hintsOfTrim(folder), "144 bytes from 180, parts of them\n");
}

TEST(RunTrim, JumpsOverTheRestOfLongRows)
{
    const ScratchFolder folder;
    folder.give("a.hdr", hdr(70'000, 5));
    folder.give("a.flt", std::string(std::size_t{70'000} * 5 * sizeof(float), '\0'));
    EXPECT_EQ(hintsOfTrim(folder), "");
}

} // namespace
} // namespace gridforge::test
