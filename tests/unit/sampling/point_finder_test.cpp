#include "sampling/point_finder.h"

#include "support/child_run.h"
#include "support/consoles.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/layer_files.h"
#include "support/process_limits.h"
#include "support/refusing_system.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge {
namespace {

// The layer has one point, and the second is searched for in the whole grid.
void findTwo(std::size_t megabytes)
{
    const test::Environment environment({{"GRIDFORGE_SCRATCH", "/nowhere"}});
    sampling::PointFinder finder("l.mif", "a.flt", {.nearest = 10, .extremes = {}});
    finder.load("a.flt");
    finder.goTo(500, 600);
    EXPECT_TRUE(finder.nearest());
    if (megabytes != 0) {
        test::limitMemory(megabytes);
    }
    finder.goTo(700, 800);
    EXPECT_TRUE(finder.nearest());
}

TEST(PointFinder, ASecondPointThatFindsNoRoomForTheGridEndsTheRun)
{
    if (!test::canLimitMemory()) {
        GTEST_SKIP() << "the sanitizer has taken its memory already";
    }
    const test::ScratchFolder folder;
    folder.give("a.flt", "");
    std::filesystem::resize_file(folder.path() / "a.flt", 80'000'000);
    folder.give("a.hdr", test::hdr(4000, 5000));
    test::giveMif(folder, "l", "Point 500 600\n");
    EXPECT_FALSE(test::runInChild(folder, [] { findTwo(0); }).ended);
    const test::ChildRun run = test::runInChild(folder, [] { findTwo(40); });
    EXPECT_TRUE(run.ended);
    EXPECT_THAT(run.console, testing::EndsWith("ERROR - Could not allocate enough memory (RAM).\n" + test::kExits));
}

// The cells around the first point have been read; those of all the grid can no longer be.
TEST(PointFinder, ASecondPointWhoseGridCannotBeReadEndsTheRun)
{
    const test::ScratchFolder folder;
    const test::Cells cells(30, std::vector<double>(40, 2.5));
    folder.give("a.flt", test::fltCells(cells));
    folder.give("a.hdr", test::hdr(cells));
    test::giveMif(folder, "l", "Point 5 6\n");
    for (const bool refuses : {false, true}) {
        const test::ChildRun run = test::runInChild(folder, [refuses] {
            sampling::PointFinder finder("l.mif", "a.flt", {.nearest = 10, .extremes = {}});
            finder.load("a.flt");
            finder.goTo(5, 6);
            EXPECT_TRUE(finder.nearest());
            if (refuses) {
                test::refuseReadsAfter(0);
            }
            finder.goTo(7, 8);
            EXPECT_TRUE(finder.nearest());
        });
        EXPECT_EQ(run.ended, refuses);
        EXPECT_EQ(run.console.ends_with(test::errorEndText(
                      "ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS.")),
                  refuses)
            << run.console;
    }
}

} // namespace
} // namespace gridforge
