// Layers of the sampling operations as OGR reads them, in both families.
#include "support/layer_files.h"
#include "support/ogr_test.h"
#include "support/tool_run.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

// The layer `name` with the extension `kind`; a .shp is made by OGR.
void giveLayer(ToolRun& run, const std::string& name, const std::string& kind, const std::string& text,
               const std::string& records)
{
    run.give(name + ".mif", text);
    run.give(name + ".mid", records);
    if (kind == ".shp") {
        const std::string folder = run.folder().string() + "/";
        ASSERT_TRUE(ogrConvert("-f 'ESRI Shapefile' '" + folder + name + ".shp' '" + folder + name + ".mif'"));
        run.give(name + ".prj", "PROJCS[\"Test\"]\n");
    }
}

void expectFeature(const OgrFeature& feature, const std::string& kind, const std::vector<double>& numbers,
                   const std::vector<std::string>& values)
{
    EXPECT_EQ(feature.kind, kind);
    ASSERT_EQ(feature.numbers.size(), numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        EXPECT_NEAR(feature.numbers[i], numbers[i], 1e-6);
    }
    ASSERT_EQ(feature.values.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        char* end = nullptr;
        const double number = std::strtod(values[i].c_str(), &end);
        if (*end == '\0') {
            EXPECT_NEAR(std::strtod(feature.values[i].c_str(), nullptr), number, 1e-9);
        } else {
            EXPECT_EQ(feature.values[i], values[i]);
        }
    }
}

class SamplingInterop : public OgrWitness<testing::TestWithParam<const char*>> {
protected:
    std::string kind() const { return GetParam(); }
    // A file set of a layer: <name>_P.shp or <name>.mif.
    std::string file(const ToolRun& run, const std::string& name, const std::string& family) const
    {
        return run.folder().string() + "/" + name + (kind() == ".shp" ? family + ".shp" : ".mif");
    }
};

TEST_P(SamplingInterop, CalibrationPointsAndConnections)
{
    ToolRun run({"-b", "-cp", "p" + kind(), "-cpsd4", "dem.asc"});
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveLayer(run, "p", kind(),
              mifHeader({"Obs Float", "Mark Char(20)"}, kHundredBounds) + "Point 4.3 4.4\nPoint 6 5.25\n",
              "40.5,\"left bank\"\n57,\"bridge, old\"\n");
    run.start();
    const auto points = ogrFeatures(file(run, "p_Res", "_P"));
    ASSERT_EQ(points.size(), 2U) << run.console();
    expectFeature(points[0], "POINT", {4.3, 4.4}, {"40.5", "left bank", "44", "3.5", "0.5"});
    expectFeature(points[1], "POINT", {6, 5.25}, {"57", "bridge, old", "56", "-1", "0.25"});
    const auto lines = ogrFeatures(file(run, "p_Cn", "_L"));
    ASSERT_EQ(lines.size(), 2U);
    expectFeature(lines[0], "LINESTRING", {4, 4, 4.3, 4.4}, {"0.5", "Closest"});
    expectFeature(lines[1], "LINESTRING", {6, 5, 6, 5.25}, {"0.25", "Closest"});
}

TEST_P(SamplingInterop, LongProfileCheckLayers)
{
    ToolRun run({"-b", "-lp", "l" + kind(), "-lpmd100", "-cpsd4", "-check", "dem.asc"});
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveLayer(run, "l", kind(), mifHeader({"Label Char(20)"}, kHundredBounds) + "Pline 2\n2 5\n8 5\n", "\"main\"\n");
    run.start();
    ASSERT_TRUE(run.has("l_main.csv")) << run.console();
    auto features = ogrFeatures(file(run, "l_LP_check", "_L"));
    if (kind() == ".shp") {
        const auto points = ogrFeatures(file(run, "l_LP_check", "_P"));
        features.insert(features.end(), points.begin(), points.end());
    }
    ASSERT_EQ(features.size(), 12U);
    // Cells rise to the north, 10 a row: the invert is in row 2, the left bank in row 9, the right bank on the line.
    expectFeature(features[0], "LINESTRING", {2, 2, 2, 8}, {"99999", "Invert", "main", "0"});
    expectFeature(features[4], "LINESTRING", {8, 5, 8, 10}, {"99999", "Left Bank", "main", "6"});
    expectFeature(features[6], "POINT", {1.5, 1.5}, {"22", "Invert", "main", "0"});
    expectFeature(features[10], "POINT", {8, 9}, {"98", "Left Bank", "main", "6"});
    expectFeature(features[11], "POINT", {8, 5}, {"58", "Right Bank", "main", "6"});
}

// The features of one kind: those of a set of a Shapefile layer, or picked from a .mif.
std::vector<OgrFeature> ofKind(std::vector<OgrFeature> features, const std::string& kind)
{
    std::erase_if(features, [&](const OgrFeature& feature) { return feature.kind != kind; });
    return features;
}

TEST_P(SamplingInterop, BreaklinesAndTheirCheckLayer)
{
    ToolRun run({"-b", "-brkline", "b" + kind(), "-check", "dem.asc"});
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveLayer(run, "b", kind(),
              mifHeader({"Z Float", "dZ Float", "Width Float", "Options Char(20)"}, kHundredBounds) +
                  "Pline 2\n4 5\n6 5\nPline 2\n4.5 4.5\n5.5 4.5\n",
              "7,1,4,\"Max Perp\"\n7,5,3.8,\"Min\"\n");
    run.start();
    // The first line is twice its dZ, so two vertices go in. Searches across it reach 3 cells to each side, to row 8.
    const auto points = ofKind(ogrFeatures(file(run, "b_brkline", "_P")), "POINT");
    ASSERT_EQ(points.size(), 6U) << run.console();
    const double third = 2 / 3.0;
    expectFeature(points[0], "POINT", {4, 5}, {"84", "0", "0", "Max Perp"});
    expectFeature(points[1], "POINT", {4 + third, 5}, {"85", "0", "0", "Max Perp"});
    expectFeature(points[2], "POINT", {6 - third, 5}, {"85", "0", "0", "Max Perp"});
    expectFeature(points[3], "POINT", {6, 5}, {"86", "0", "0", "Max Perp"});
    // Circles of nine cells around the centres of the cells (5, 5) and (5, 6).
    expectFeature(points[4], "POINT", {4.5, 4.5}, {"44", "0", "0", "Min"});
    expectFeature(points[5], "POINT", {5.5, 4.5}, {"45", "0", "0", "Min"});
    const auto lines = ofKind(ogrFeatures(file(run, "b_brkline", "_L")), "LINESTRING");
    ASSERT_EQ(lines.size(), 2U);
    expectFeature(lines[0], "LINESTRING", {4, 5, 4 + third, 5, 6 - third, 5, 6, 5}, {"99999", "0", "4", "Max Perp"});
    expectFeature(lines[1], "LINESTRING", {4.5, 4.5, 5.5, 4.5}, {"99999", "0", "3.8", "Min"});

    if (kind() == ".mif") {
        return; // the quotation mark behind its counts keeps OGR from reading that check layer to its end
    }
    const auto found = ogrFeatures(file(run, "b_check", "_P"));
    ASSERT_EQ(found.size(), 6U);
    expectFeature(found[0], "POINT", {3.5, 7.5}, {"84", "1", "Max Perp"});
    expectFeature(found[4], "POINT", {3.5, 3.5}, {"44", "1", "Min"});
    expectFeature(found[5], "POINT", {4.5, 3.5}, {"45", "1", "Min"});
    const auto searches = ogrFeatures(file(run, "b_check", "_L"));
    ASSERT_EQ(searches.size(), 4U);
    expectFeature(searches[3], "LINESTRING", {6, 2, 6, 8}, {"99999", "-99", "Max Perp"});
    EXPECT_EQ(ogrFeatures(file(run, "b_check", "_R")).size(), 2U);
}

TEST_P(SamplingInterop, CirclesOfABreakline)
{
    ToolRun run({"-b", "-brkline", "b" + kind(), "-check", "dem.asc"});
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveLayer(run, "b", kind(),
              mifHeader({"Z Float", "dZ Float", "Width Float", "Options Char(20)"}, kHundredBounds) +
                  "Pline 2\n4.5 4.5\n5.5 4.5\n",
              "7,5,3.8,\"all\"\n");
    run.start();
    const auto circles = ogrFeatures(file(run, "b_check", "_R"));
    ASSERT_EQ(circles.size(), 2U) << run.console();
    std::vector<double> ring; // clockwise or not: as written
    for (int k = 0; k <= 12; ++k) {
        const double angle = 3.14159265358979 / 6 * k;
        ring.push_back(5.5 + 1.9 * std::cos(angle));
        ring.push_back(4.5 + 1.9 * std::sin(angle));
    }
    EXPECT_EQ(circles[1].kind, "POLYGON");
    ASSERT_EQ(circles[1].numbers.size(), ring.size());
    for (std::size_t i = 0; i < ring.size(); ++i) {
        EXPECT_NEAR(circles[1].numbers[i], ring[i], 1e-6);
    }
    ASSERT_EQ(circles[1].values.size(), 3U);
    EXPECT_EQ(std::stod(circles[1].values[0]), 56);
    EXPECT_EQ(std::stod(circles[1].values[1]), 9);
    EXPECT_EQ(circles[1].values[2], "all");
}

TEST_P(SamplingInterop, NodalAreasOfRegionsMadeElsewhere)
{
    ToolRun run({"-b", "-na", "n" + kind(), "dem.asc"});
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveLayer(run, "n", kind(),
              mifHeader({"ID Char(20)", "A Char(2)", "B Char(8)", "C Char(20)", "D Char(20)", "E Char(20)",
                         "F Char(20)", "G Char(20)", "H Char(20)", "I Float", "J Float", "Skew Float"},
                        kHundredBounds) +
                  "Region 1\n5\n1.5 1.5\n1.5 3.5\n3.5 3.5\n3.5 1.5\n1.5 1.5\n",
              "\"pond.csv\",\"S\",\"Node\",\"a\",\"b\",\"c\",\"d\",\"e\",\"f\",0,0,32.95\n");
    run.start();
    // Cells 22, 23, 32 and 33; the user's minimum leaves but 33 above the first height.
    EXPECT_TRUE(run.says("Found 4 DEM values within region.")) << run.console();
    EXPECT_EQ(run.read("pond.csv"), "\"Height\",\"Area\"\r\n"
                                    "  32.951,               3.000\r\n"
                                    "  33.000,               4.000\r\n"
                                    "  33.100,               4.000\r\n");
}

INSTANTIATE_TEST_SUITE_P(Families, SamplingInterop, testing::Values(".mif", ".shp"),
                         [](const auto& family) { return std::string(family.param + 1); });

} // namespace
} // namespace gridforge::test
