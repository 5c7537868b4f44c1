// Damages as OGR reads them, in both families and beside the table; buildings as OGR writes them.
#include "support/damages_files.h"
#include "support/ogr_test.h"
#include "support/paths.h"
#include "support/tool_run.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

const std::vector<double> kBox = {3.5, 2.5, 6.5, 2.5, 6.5, 4.5, 3.5, 4.5, 3.5, 2.5};

// Rows of a table behind its heading, each as its values without quotes. No value here holds a comma.
std::vector<std::vector<std::string>> rowsOf(const std::string& table)
{
    std::vector<std::vector<std::string>> rows;
    for (std::size_t line = table.find('\n') + 1; line < table.size(); line = table.find('\n', line) + 1) {
        std::vector<std::string> values(1);
        for (const char c : table.substr(line, table.find('\r', line) - line)) {
            if (c == ',') {
                values.emplace_back();
            } else if (c != '"') {
                values.back() += c;
            }
        }
        rows.push_back(values);
    }
    return rows;
}

void expectSameValues(const std::vector<std::string>& byOgr, const std::vector<std::string>& row)
{
    ASSERT_EQ(byOgr.size(), row.size());
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (row[i].empty()) {
            EXPECT_THAT(byOgr[i], testing::AnyOf("", "(null)")); // a .dbf does not tell blank from nothing
        } else if (i < 2) {
            EXPECT_EQ(byOgr[i], row[i]);
        } else {
            EXPECT_EQ(std::strtod(byOgr[i].c_str(), nullptr), std::strtod(row[i].c_str(), nullptr)) << byOgr[i];
        }
    }
}

void expectSamePlaces(const OgrFeature& feature, const std::string& kind, const std::vector<double>& numbers)
{
    EXPECT_EQ(feature.kind, kind);
    ASSERT_EQ(feature.numbers.size(), numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        EXPECT_NEAR(feature.numbers[i], numbers[i], 1e-6);
    }
}

struct Families {
    std::string input;
    std::string output;
};

class DamagesInterop : public OgrWitness<testing::TestWithParam<Families>> {};

// Two points with a polygon between them, so that the order of the table is not that of the two files of a .shp.
TEST_P(DamagesInterop, LayerAndTableTellTheSame)
{
    const auto& [input, output] = GetParam();
    ToolRun run({"-b", "-damages", "c.dmg", "-out", "o" + output});
    const std::string objects = pointMif("3.25", "1.5") + boxMif(3.5, 2.5, 6.5, 4.5) + pointMif("8.25", "6");
    giveDamageFiles(run, objects,
                    "\"House\",\"first\",3,1\n\"Big shop\",\"north side\",40.25,2.5\n\"House\",\"\",-0.125,0.5\n");
    std::string control = "Read Curve House == house.csv\nRead Curve Big shop == shop.csv\n"
                          "Read Result % 0.5 == wl.asc\nRead Result 0.1 == low.asc\n";
    run.give("shop.csv", "h\n0,0.5\n10,1000.5\n");
    run.give("low.asc", levels(6, 8, -20.0625));
    if (input == ".mif") {
        control += "Read GIS Buildings == h.mif\n";
    } else {
        // A .shp holds one kind of object: points and polygons are two layers.
        const std::string folder = run.folder().string() + "/";
        for (const auto& [name, kind] : {std::pair("points", "POINT"), std::pair("boxes", "POLYGON")}) {
            ASSERT_TRUE(ogrConvert("-f 'ESRI Shapefile' -where \"OGR_GEOMETRY='" + std::string(kind) + "'\" '" +
                                   folder + name + ".shp' '" + folder + "h.mif'"));
            run.give(std::string(name) + ".prj", "PROJCS[\"Town\"]\n");
            control += "Read GIS Buildings == " + std::string(name) + ".shp\n";
        }
    }
    run.give("c.dmg", control);
    run.start();
    ASSERT_TRUE(run.has("o.csv")) << run.console();

    // Levels 32 and 46 and 68 (column 3, row 2; columns 4 to 6, rows 3 and 4; column 8, row 6), 20.0625 less on the first
    // grid: 23 - 3, 46 - 40.25 and 68 + 0.125 by the second.
    const auto rows = rowsOf(run.read("o.csv"));
    ASSERT_EQ(rows.size(), 3U);
    const std::vector<std::string> first = {"House", "first", "3.", "1.", "0.", "2000.", "0."};
    const std::vector<std::string> shop = {"Big shop", "north side", "40.25", "2.5", "1.25", "1439.", "0."};
    const std::vector<std::string> last = {"House", "", "-0.125", "0.5", "2403.", "3406.", "0."};
    const bool mixed = input == ".mif";
    EXPECT_EQ(rows[0], first);
    EXPECT_EQ(rows[1], mixed ? shop : last);
    EXPECT_EQ(rows[2], mixed ? last : shop);

    const std::string base = run.folder().string() + "/o";
    if (output == ".mif") {
        const auto features = ogrFeatures(base + ".mif");
        ASSERT_EQ(features.size(), 3U);
        for (std::size_t i = 0; i < features.size(); ++i) {
            expectSameValues(features[i].values, rows[i]);
        }
        expectSamePlaces(features[0], "POINT", {3.25, 1.5});
        EXPECT_EQ(features[mixed ? 1 : 2].kind, "POLYGON");
    } else {
        const auto points = ogrFeatures(base + "_P.shp");
        const auto boxes = ogrFeatures(base + "_R.shp");
        ASSERT_EQ(points.size(), 2U);
        ASSERT_EQ(boxes.size(), 1U);
        expectSameValues(points[0].values, first);
        expectSameValues(points[1].values, last);
        expectSameValues(boxes[0].values, shop);
        expectSamePlaces(points[0], "POINT", {3.25, 1.5});
        expectSamePlaces(points[1], "POINT", {8.25, 6});
        EXPECT_EQ(boxes[0].kind, "POLYGON");
        EXPECT_EQ(boxes[0].numbers.size(), kBox.size());
    }
}

INSTANTIATE_TEST_SUITE_P(Both, DamagesInterop,
                         testing::Values(Families{".mif", ".mif"}, Families{".mif", ".shp"}, Families{".shp", ".shp"},
                                         Families{".shp", ".mif"}));

class DamagesInteropEmpty : public OgrWitness<> {};

// A multiplier that OGR leaves empty is none, in both families.
TEST_F(DamagesInteropEmpty, AMultiplierWithoutValueIsNone)
{
    for (const std::string kind : {".shp", ".mif"}) {
        ToolRun run("-b -damages c.dmg");
        giveDamageFiles(run, "", "");
        run.give("b.csv", "Prop_Type,Prop_ID,FFL,Multiplier,WKT\nHouse,A,3.5,,POINT (2 1)\n"
                          "House,B,2,0.5,POINT (2 1)\n");
        const std::string folder = run.folder().string() + "/";
        ASSERT_TRUE(ogrConvert("-f '" + std::string(kind == ".shp" ? "ESRI Shapefile" : "MapInfo File") + "' " +
                               (kind == ".mif" ? "-dsco FORMAT=MIF " : "") +
                               "-select Prop_Type,Prop_ID,FFL,Multiplier -oo AUTODETECT_TYPE=YES -a_srs EPSG:28356 '" +
                               folder + "b" + kind + "' '" + folder + "b.csv'"));
        run.give("c.dmg",
                 "Read GIS Buildings == b" + kind + "\nRead Curve House == house.csv\nRead Result % 1 == wl.asc\n");
        run.start();
        ASSERT_TRUE(run.has("b_Damages.csv")) << run.console();
        EXPECT_THAT(rowsOf(run.read("b_Damages.csv")),
                    ElementsAre(ElementsAre("House", "A", "3.5", "1.", "850.", "0."),
                                ElementsAre("House", "B", "2.", "0.5", "500.", "0.")));
    }
}

// Of a ring given as x, y, x, y and closed.
double ringArea(const std::vector<double>& numbers)
{
    double twice = 0;
    for (std::size_t i = 0; i + 3 < numbers.size(); i += 2) {
        twice += (numbers[i + 2] - numbers[i]) * (numbers[i + 1] + numbers[i + 3] - 2 * numbers[1]);
    }
    return std::abs(twice / 2);
}

// The curves of the example are those of 150 square metres.
void expectMultipliersByArea(const std::vector<OgrFeature>& buildings)
{
    std::size_t polygons = 0;
    for (const OgrFeature& building : buildings) {
        if (building.kind == "POLYGON") {
            ++polygons;
            EXPECT_NEAR(std::strtod(building.values.at(3).c_str(), nullptr), ringArea(building.numbers) / 150, 0.0051)
                << building.values.at(1);
        }
    }
    EXPECT_GT(polygons, 0U);
}

// The example as the demo runs it, on a smaller valley.
TEST(DamagesInteropExample, RunsOnTheSampleCatchment)
{
    ToolRun maker("--out . --columns 240 --rows 180 --cell 10 --detail 60 --format asc");
    maker.program(catchmentMakerPath());
    maker.start();
    ASSERT_EQ(maker.status(), 0) << maker.error();

    ToolRun run("-b -damages catchment.dmg");
    for (const std::string& name : maker.changedFiles()) {
        if (name.starts_with("level_") || name.starts_with("buildings.")) {
            run.give(name, maker.read(name));
        }
    }
    const std::filesystem::path example = std::filesystem::path(sourceFolder()) / "examples/damages";
    for (const char* name : {"catchment.dmg", "residential.csv", "commercial.csv"}) {
        run.give(name, readWhole(example / name));
    }
    run.start();
    ASSERT_TRUE(run.has("buildings_Damages.csv")) << run.console();
    EXPECT_EQ(run.console().find("WARNING"), std::string::npos);
    const auto rows = rowsOf(run.read("buildings_Damages.csv"));
    EXPECT_GT(rows.size(), 10U);
    bool any = false;
    for (const auto& row : rows) {
        ASSERT_EQ(row.size(), 9U);
        for (std::size_t i = 4; i < 8; ++i) {
            any = any || std::strtod(row[i].c_str(), nullptr) > 0;
        }
        EXPECT_EQ(row[8], "0.");
    }
    EXPECT_TRUE(any);
    if (haveOgr()) {
        const auto buildings = ogrFeatures(maker.folder().string() + "/buildings.mif");
        EXPECT_EQ(buildings.size(), rows.size());
        expectMultipliersByArea(buildings);
        const auto features = ogrFeatures(run.folder().string() + "/buildings_Damages.mif");
        ASSERT_EQ(features.size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            expectSameValues(features[i].values, rows[i]);
        }
    }
}

} // namespace
} // namespace gridforge::test
