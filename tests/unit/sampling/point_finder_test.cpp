#include "sampling/point_finder.h"

#include "support/child_run.h"
#include "support/consoles.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/layer_files.h"
#include "support/process_limits.h"

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

} // namespace
} // namespace gridforge
