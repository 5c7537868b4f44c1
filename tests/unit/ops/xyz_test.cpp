#include "ops/xyz.h"

#include "support/child_run.h"
#include "support/consoles.h"
#include "support/few_pages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

// Three points in all that get as many arrays.
ChildRun runWithArrays(const ScratchFolder& folder, int arrays)
{
    folder.give("p.xyz", "0 0 1\n1 0 2\n0 1 3\n1 1 4\n");
    return runInChild(folder, [arrays] {
        const FewPages pages(arrays);
        run::InputFileList inputs;
        inputs.add("p.xyz");
        ops::runXyz({}, inputs);
    });
}

TEST(RunXyz, PointsThatFindNoRoomEndTheRun)
{
    const ScratchFolder folder;
    const ChildRun run = runWithArrays(folder, 0);
    EXPECT_TRUE(run.ended);
    EXPECT_THAT(run.console, testing::EndsWith("Total number of points: 4\n"
                                               "Allocating memory for processing of input...\n"
                                               "ERROR - Could not allocate enough memory (RAM).\n" +
                                               kExits));
    EXPECT_FALSE(folder.has("p_xyz_to_grid.asc"));
}

// The points are read in pieces, step by step, or not at all; the grid is the same or the run has ended.
TEST(RunXyz, AnyLackOfRoomEndsTheRunOrIsNotSeen)
{
    const ScratchFolder whole;
    EXPECT_FALSE(runWithArrays(whole, 100).ended);
    int good = 0;
    int ended = 0;
    for (int arrays = 0; arrays < 12; ++arrays) {
        const ScratchFolder folder;
        const ChildRun run = runWithArrays(folder, arrays);
        if (run.ended) {
            ++ended;
            EXPECT_THAT(run.console, testing::EndsWith("ERROR - Could not allocate enough memory (RAM).\n" + kExits));
        } else {
            ++good;
            EXPECT_EQ(folder.read("p_xyz_to_grid.asc"), whole.read("p_xyz_to_grid.asc")) << arrays;
        }
    }
    EXPECT_GT(good, 1);
    EXPECT_GT(ended, 3); // the points are three arrays, the grid is one
}

} // namespace
} // namespace gridforge::test
