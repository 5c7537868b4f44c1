#include "damages/calculation.h"

#include "support/child_run.h"
#include "support/sampled_region.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

ChildRun calculate(damages::BuildingKind kind, damages::RegionLevel method)
{
    const ScratchFolder folder;
    folder.give("g.asc", "ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n5\n");
    return runInChild(folder, [=] {
        std::vector<damages::DmgBuilding> buildings(1);
        buildings[0].kind = kind;
        buildings[0].outline = regionOf({2.1, 2.2, 2.2}, {2.1, 2.1, 2.2});
        buildings[0].curve = 1;
        buildings[0].damage.resize(1);
        const std::vector<damages::DmgCurve> curves = {{"c", {0, 1}, {0, 1}}};
        const std::vector<damages::DmgRes> results = {{"g.asc", 1}};
        float level = 0;
        damages::dmg_calc_res(buildings, curves, results, 1, method, level);
    });
}

TEST(CalcRes, AnUnknownMethodOrTypeEndsTheRun)
{
    const ChildRun method = calculate(damages::BuildingKind::polygon, static_cast<damages::RegionLevel>(2));
    EXPECT_TRUE(method.ended);
    EXPECT_NE(method.console.find("   Done.\nERROR - Unexpected region inspection method [dmg_calc_res]\n"),
              std::string::npos)
        << method.console;
    const ChildRun type = calculate(static_cast<damages::BuildingKind>(2), damages::RegionLevel::maximum);
    EXPECT_TRUE(type.ended);
    EXPECT_NE(type.console.find("   Done.\nERROR - Should not be here dmg_calc_res[a]\n"), std::string::npos)
        << type.console;
    EXPECT_FALSE(calculate(damages::BuildingKind::polygon, damages::RegionLevel::average).ended);
}

} // namespace
} // namespace gridforge::test
