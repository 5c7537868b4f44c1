#include "ops/classified_asc.h"

#include "support/child_run.h"

#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

TEST(WriteAscHeaderText, WritesFixedFields)
{
    ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        Unit unit = 0;
        OPENER(unit, "O ", "a.asc");
        ops::writeAscHeaderText(unit, "shown", 3, 4, 100.25, -2, 2.5);
    });
    EXPECT_TRUE(run.console.ends_with("Writing Header for: shown\n"));
    EXPECT_EQ(folder.read("a.asc"), "ncols         4\r\nnrows         3\r\nxllcorner         100.250\r\n"
                                    "yllcorner          -2.000\r\ncellsize    2.50\r\n");
}

} // namespace
} // namespace gridforge::test
