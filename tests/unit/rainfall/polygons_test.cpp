#include "rainfall/polygons.h"

#include "support/child_run.h"
#include "support/consoles.h"
#include "support/process_limits.h"
#include "unit/rainfall/plain_rainfall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

TEST(SetPolygons, NumbersThatCannotBeHadEndTheRun)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has memory of its own";
    }
    const ScratchFolder folder;
    folder.give("none.rfc", "! no polygons\n");
    const ChildRun run = runInChild(folder, [] {
        const GridHeader grid = rainfallGrid(2000, 4000, 0, 0, 1.0F); // 32 MB a table
        rainfall::RfPolygonTables tables;
        rainfall::allocateTables(grid, tables);
        limitMemory(16);
        rainfall::rf_set_polygons("none.rfc", {}, {}, grid, tables);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.errors, "");
    EXPECT_THAT(run.console, testing::EndsWith(errorEndText("ERROR - Could not allocate enough memory (RAM).")));
}

} // namespace
} // namespace gridforge::test
