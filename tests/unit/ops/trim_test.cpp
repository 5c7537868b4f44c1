#include "ops/trim.h"

#include "support/child_run.h"
#include "support/consoles.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/layer_files.h"
#include "support/refusing_system.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

} // namespace
} // namespace gridforge::test
