#include "damages/output.h"

#include "gis/layer_table.h"
#include "support/child_run.h"

#include <gtest/gtest.h>
#include <vector>

namespace gridforge::test {
namespace {

TEST(WriteGis, AnUnknownTypeEndsTheRun)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        gis::initialise();
        std::vector<damages::DmgBuilding> buildings(1);
        buildings[0].kind = static_cast<damages::BuildingKind>(2);
        const std::vector<damages::DmgCurve> curves(1);
        damages::dmg_write_gis({"o.mif", "o.csv"}, {}, buildings, {}, curves);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_NE(run.console.find("\nERROR - Should not be here: dmg_write_gis[a]\n"), std::string::npos) << run.console;
}

} // namespace
} // namespace gridforge::test
