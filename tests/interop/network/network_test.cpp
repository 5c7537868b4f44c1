// The layers of a network as OGR reads them, in both families.
#include "support/network_layers.h"
#include "support/ogr.h"
#include "support/tool_run.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

std::string without(std::string text, const std::string& part)
{
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return text.erase(at, part.size());
}

class NetworkInterop : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        if (!haveOgr()) {
            GTEST_SKIP() << "no OGR";
        }
    }
    std::string kind() const { return GetParam(); }

    // The drawn network without the objects that are no lines, which a .shp cannot hold beside them, and without the
    // section that shares a chainage: OGR refuses a .mif with a polyline of one vertex.
    void giveNetwork(ToolRun& run) const
    {
        giveDrawnNetwork(run);
        giveLayer(run, "1d_branches_t", kBranchColumns, without(kDrawnBranches, "Point 3 3\n"),
                  without(kDrawnBranchRecords, "\"no line\",1,\"T\",0\n"));
        const std::string sections = without(kDrawnSections, rectangle(1, 1, 2, 2));
        const std::string records = without(kDrawnSectionRecords, "\"no line\",0,\"T\",\"T\",\"\",\"\",0\n");
        giveLayer(run, "1d_cut_t", kCutColumns, without(sections, pline({18, 8, 20, 10, 22, 12})),
                  without(records, "\"twin\",0,\"T\",\"T\",\"\",\"\",0\n"));
        giveLayer(run, "flc", {"FLC Float"}, rectangle(1, 9, 22, 11), "0.3\n");
        if (kind() == ".shp") {
            const std::string folder = run.folder().string() + "/";
            for (const std::string name : {"1d_branches_t", "1d_cut_t", "flc"}) {
                ASSERT_TRUE(ogrConvert("-f 'ESRI Shapefile' '" + folder + name + ".shp' '" + folder + name + ".mif'"));
                run.give(name + ".prj", "PROJCS[\"Test\"]\n");
            }
        }
    }

    // What OGR reads of a layer of lines.
    std::vector<OgrFeature> lines(const ToolRun& run, const std::string& name) const
    {
        return ogrFeatures(run.folder().string() + "/" + name + (kind() == ".shp" ? "_L.shp" : ".mif"));
    }
};

void expectLine(const OgrFeature& feature, const std::vector<double>& xy, const std::vector<std::string>& values)
{
    EXPECT_EQ(feature.kind, "LINESTRING");
    EXPECT_EQ(feature.numbers, xy);
    ASSERT_EQ(feature.values.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        char* end = nullptr;
        const double number = std::strtod(values[i].c_str(), &end);
        if (!values[i].empty() && *end == '\0') {
            EXPECT_NEAR(std::strtod(feature.values[i].c_str(), nullptr), number, 1e-9) << i;
        } else {
            // OGR shows blank texts of a .dbf as null.
            EXPECT_EQ(feature.values[i] == "(null)" ? "" : feature.values[i], values[i]) << i;
        }
    }
}

std::vector<std::string> nwkValues(const std::string& id, const std::string& type, const std::string& ucs,
                                   const std::string& n, const std::string& formLoss)
{
    return {id, type, "F", ucs, "0", n,   "-99999", "-99999", formLoss, "0",
            "", "",   "0", "0", "0", "0", "0",      "0",      "0",      "0.5"};
}

TEST_P(NetworkInterop, LinesAndSections)
{
    ToolRun run("-b -nbc net.nbc");
    giveNetwork(run);
    run.give("net.nbc", "Read GIS Branch == 1d_branches_t" + kind() + "\nRead GIS XS == 1d_cut_t" + kind() +
                            "\nRead GIS FLC == flc" + kind() +
                            "\nSet XS dx == 4\nRead Grid Z == dem.asc\nFLC per unit length == 0.5\n");
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();

    const auto network = lines(run, "1d_nwk_t");
    ASSERT_EQ(network.size(), 7U) << run.console();
    // Main's 0.6 by five lines, and 0.3 of the region by the two that start in it, at (5, 10) and (20, 10).
    expectLine(network[0], {0, 10, 5, 10}, nwkValues("Main_00000", "S", "T", "0.03", "0.12"));
    expectLine(network[1], {5, 10, 10, 10, 20, 10}, nwkValues("Main_00005", "S", "T", "0.03", "0.27"));
    expectLine(network[2], {20, 10, 25, 10}, nwkValues("Main_00020", "S", "T", "0.03", "0.27"));
    expectLine(network[3], {25, 10, 35, 10}, nwkValues("Main_00025", "S", "T", "0.03", "0.12"));
    expectLine(network[4], {35, 10, 40, 10, 50, 10}, nwkValues("Main_00050", "S", "T", "0.03", "0.12"));
    expectLine(network[5], {30, 30, 30, 20, 30, 10}, nwkValues("Trib", "S", "F", "1", "0.2"));
    expectLine(network[6], {30, 10, 31, 10}, nwkValues("", "X", "F", "0", "0"));

    const auto sections = lines(run, "1d_xs_t");
    ASSERT_EQ(sections.size(), 8U);
    const auto values = [](const std::string& source, const std::string& distance) {
        return std::vector<std::string>{source, "", "", "", "", "", "", "", "", distance, "0", "0"};
    };
    expectLine(sections[0], {5, 6, 5, 10, 5, 14}, values("csv\\Main_5.000.csv", "0"));
    expectLine(sections[1], {20, 6, 20, 10, 20, 14}, values("csv\\Main_20.000.csv", "0"));
    expectLine(sections[6], {28, 25, 30, 25, 32, 25}, values("csv\\Trib_5.000.csv", "1"));
    expectLine(sections[7], {55, 20, 58, 20}, values("apart.CSV", "-1"));
}

TEST_P(NetworkInterop, TheSameFromFlags)
{
    ToolRun run({"-b", "-xs", "1d_cut_t" + kind(), "-branch", "1d_branches_t" + kind(), "dem.asc"});
    giveNetwork(run);
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_EQ(lines(run, "1d_nwk_t").size(), 7U);
    const auto sections = lines(run, "1d_xs_t");
    ASSERT_EQ(sections.size(), 8U);
    expectLine(sections[5], {25, 14, 25, 10, 25, 6},
               {"csv\\Main_25.000.csv", "XZ", "", "", "", "", "", "", "", "0", "0", "0"});
}

TEST_P(NetworkInterop, TheCheckLayerIsAMif)
{
    ToolRun run("-b -nbc net.nbc");
    giveNetwork(run);
    run.give("net.nbc", "Read GIS Branch == 1d_branches_t" + kind() + "\nRead GIS XS == 1d_cut_t" + kind() +
                            "\nSet XS dx == 4\nSet XS Z == 1.5\nSet XS Mat == 7\nWrite Check == On\nWrite XS == Off\n"
                            "Write NWK == Off\n");
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    const auto points = ogrFeatures(run.folder().string() + "/net.nbc_check.mif");
    // Six sections of four points, the one of its own distance has six, the one of vertices two, and that which is not
    // extracted four.
    ASSERT_EQ(points.size(), 36U);
    EXPECT_EQ(points[0].kind, "POINT");
    EXPECT_EQ(points[0].numbers, (std::vector<double>{5, 6}));
    EXPECT_EQ(points[0].values, (std::vector<std::string>{"csv\\Main_5.000.csv", "1.5", "7"}));
}

INSTANTIATE_TEST_SUITE_P(Families, NetworkInterop, testing::Values(".mif", ".shp"),
                         [](const auto& family) { return std::string(family.param).substr(1); });

} // namespace
} // namespace gridforge::test
