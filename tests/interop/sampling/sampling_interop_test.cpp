// Layers of the sampling operations as OGR reads them, in both families.
#include "support/ogr.h"
#include "support/tool_run.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

// Cell (row, column) from the south-west is 10 row + column.
std::string terrain()
{
    Cells cells;
    for (int row = 9; row >= 1; --row) {
        cells.emplace_back();
        for (int column = 1; column <= 9; ++column) {
            cells.back().push_back(10 * row + column);
        }
    }
    return ascGrid(cells);
}

std::string mif(const std::string& columns, const std::string& objects)
{
    return "Version 300\nCharset \"WindowsLatin1\"\nDelimiter \",\"\nCoordSys NonEarth Units \"m\" Bounds (0, 0) (100, "
           "100)\n"
           "Columns " +
           columns + "Data\n\n" + objects;
}

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

class SamplingInterop : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override
    {
        if (!haveOgr()) {
            GTEST_SKIP() << "no OGR";
        }
    }
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
    run.give("dem.asc", terrain());
    giveLayer(run, "p", kind(), mif("2\n  Obs Float\n  Mark Char(20)\n", "Point 4.3 4.4\nPoint 6 5.25\n"),
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
    run.give("dem.asc", terrain());
    giveLayer(run, "l", kind(), mif("1\n  Label Char(20)\n", "Pline 2\n2 5\n8 5\n"), "\"main\"\n");
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

INSTANTIATE_TEST_SUITE_P(Families, SamplingInterop, testing::Values(".mif", ".shp"),
                         [](const auto& family) { return std::string(family.param + 1); });

} // namespace
} // namespace gridforge::test
