// What is sampled in windows of a grid is the same, and so is what the run says, whether the windows are read ahead, by however
// many threads and in whatever parts, or the grid is read whole.
#include "host/memory/memory_system.h"
#include "run/cells_ahead.h"
#include "support/both_ways.h"
#include "support/child_run.h"
#include "support/damages_files.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/layer_files.h"
#include "support/odd_cells.h"
#include "support/operation_run.h"
#include "support/shp_bytes.h"

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

constexpr std::size_t kRows = 300; // more than two bands of rows that are read together
constexpr std::size_t kColumns = 150;
constexpr double kWest = 100;
constexpr double kSouth = 200;

// Levels with patches of null.
Cells plainLevels(std::uint32_t seed)
{
    std::mt19937 random(seed);
    Cells cells(kRows, std::vector<double>(kColumns));
    for (std::size_t r = 0; r < kRows; ++r) {
        for (std::size_t c = 0; c < kColumns; ++c) {
            const bool dry = std::sin(static_cast<double>(r) / 17) + std::cos(static_cast<double>(c) / 13) > 0.8;
            cells[r][c] = dry ? -9999 : static_cast<double>(random() % 4096) / 256;
        }
    }
    return cells;
}

// The same with stretches of cells of every odd value, as a binary grid can hold them.
Cells levels(std::uint32_t seed)
{
    Cells cells = plainLevels(seed);
    for (std::size_t r = 40; r < kRows; r += 60) {
        const std::vector<float> odd = oddCells(12 * kColumns, -9999, seed + static_cast<std::uint32_t>(r));
        for (std::size_t i = 0; i < odd.size(); ++i) {
            cells[r + i / kColumns][i % kColumns] = static_cast<double>(odd[i]);
        }
    }
    return cells;
}

void giveGrid(GivenFiles& given, const std::string& base, std::uint32_t seed, double cellsize = 1)
{
    const Cells cells = levels(seed);
    given[base + ".hdr"] = hdr(cells, {.xll = kWest, .yll = kSouth, .cellsize = cellsize});
    given[base + ".flt"] = fltCells(cells);
}

struct Place {
    double x;
    double y;
};

// All over the grid and a little beyond its edges, to the thousandth.
std::vector<Place> places(std::size_t count)
{
    std::mt19937 random(7);
    const auto along = [&](double from, double length) {
        const auto least = static_cast<std::uint32_t>((length + 20) * 1000);
        return from - 10 + static_cast<double>(random() % least) / 1000;
    };
    std::vector<Place> made;
    for (std::size_t i = 0; i < count; ++i) {
        made.push_back({along(kWest, kColumns), along(kSouth, kRows)});
    }
    made.push_back(made.front()); // one place twice
    return made;
}

std::string shown(double value)
{
    std::string text = std::to_string(value);
    return text.substr(0, text.find('.') + 4);
}

// --- Calibration points ----------------------------------------------------------------------------------------------

const std::vector<std::string> kMarkColumns{"Observed Float", "Label Char(20)"};

GivenFiles marks()
{
    GivenFiles given;
    giveGrid(given, "g", 1);
    std::string objects;
    std::string records;
    int number = 0;
    for (const auto& [x, y] : places(120)) {
        // A form of each point, and other objects between them.
        const std::string at = shown(x) + ' ' + shown(y) + '\n';
        objects += ++number % 7 == 0 ? "  POINT\n" + at : number % 5 == 0 ? "Point\t" + at : "Point " + at;
        objects += "    Symbol (35,0,12)\n";
        records += std::to_string(number % 30) + ".5,\"M" + std::to_string(number) + "\"\n";
        if (number % 11 == 0) {
            objects += "Line 1 2 3 4\n    Pen (1,2,0)\n";
            records += "1,\"line\"\n";
        }
    }
    given["m.mif"] = mifHeader(kMarkColumns) + objects;
    given["m.mid"] = records;
    return given;
}

TEST(CalibrationPointsAhead, AreThoseOfTheWholeGrid)
{
    expectBothWaysTheSame(marks(), "-cp m.mif g.flt -cpsd12", false);
    expectBothWaysTheSame(marks(), "-cp m.mif g.flt -cpsd3 -cpmm30", false);
    expectBothWaysTheSame(marks(), "-cp m.mif g.flt -cpsd20 -cpmm5 -out r.mif", false);
}

TEST(CalibrationPointsAhead, WithCellsOfAnotherSizeToo)
{
    GivenFiles given = marks();
    giveGrid(given, "g", 2, 0.7);
    expectBothWaysTheSame(given, "-cp m.mif g.flt -cpsd12 -cpmm15", false);
}

// A Shapefile without a place of its own for its index.
void giveShapefile(GivenFiles& given, const std::string& base, std::int32_t type, const ShapefileRecords& records)
{
    given[base + ".shp"] = shpBytes(type, records.objects);
    given[base + ".dbf"] = dbfBytes(records.columns, records.values);
    given[base + ".prj"] = records.projection;
}

// `text` in a column of a table.
std::string padded(std::string text, std::size_t width)
{
    text.resize(width, ' ');
    return text;
}

// Points, and records without a shape between them.
GivenFiles shpMarks()
{
    GivenFiles given;
    giveGrid(given, "g", 1);
    ShapefileRecords records{.objects = {}, .columns = {{"OBS", 'N', 8}, {"MARK", 'C', 6}}, .values = {}};
    int number = 0;
    for (const auto& [x, y] : places(120)) {
        if (++number % 7 == 0) {
            records.objects.push_back(little(0));
            records.values.push_back(padded("1.5", 8) + padded("none", 6));
        }
        records.objects.push_back(pointRecord(x, y));
        records.values.push_back(padded(std::to_string(number % 30) + ".5", 8) +
                                 padded("M" + std::to_string(number), 6));
    }
    giveShapefile(given, "m", 1, records);
    return given;
}

// In a process of its own: tables of Shapefiles keep values for all later ones of theirs.
void expectBothWaysTheSameApart(const GivenFiles& given, const std::string& line)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [&] {
        expectBothWaysTheSame(given, line, false);
        if (!testing::Test::HasFailure()) {
            std::ofstream("same").flush();
        }
    });
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "same")) << line << '\n' << run.console << run.errors;
}

TEST(CalibrationPointsAhead, OfAShapefileAreThoseOfTheWholeGrid)
{
    expectBothWaysTheSameApart(shpMarks(), "-cp m.shp g.flt -cpsd12");
    expectBothWaysTheSameApart(shpMarks(), "-cp m.shp g.flt -cpsd3 -cpmm30");
    expectBothWaysTheSameApart(shpMarks(), "-cp m.shp g.flt -cpsd20 -cpmm5 -out r.mif");
}

// The run goes that way, and is that whose reads by position are refused.
void expectWay(run::Way way, const GivenFiles& given, const std::string& line)
{
    const std::size_t before = waysGone(way);
    const std::size_t ahead = waysGone(run::Way::ahead);
    const Outcome found = runOperationOn(given, line);
    EXPECT_EQ(waysGone(way), before + 1) << line;
    EXPECT_EQ(waysGone(run::Way::ahead), ahead) << line;
    EXPECT_EQ(found, runOperationOn(given, line, true)) << line;
}

TEST(CalibrationPointsAhead, OfATextGridAreReadWhole)
{
    GivenFiles given = marks();
    given["a.asc"] = ascGrid(plainLevels(1), {.xll = kWest, .yll = kSouth});
    expectWay(run::Way::textGrid, given, "-cp m.mif a.asc -cpsd12");
}

TEST(CalibrationPointsAhead, InWindowsOfMoreCellsThanTheGridAreReadWhole)
{
    const Environment environment({{"GRIDFORGE_PIECE", "1"}}); // none is read together with another one
    expectWay(run::Way::wideWindows, marks(), "-cp m.mif g.flt -cpsd100");
}

TEST(CalibrationPointsAhead, OfAnOddLayerAreReadWhole)
{
    GivenFiles given = marks();
    given["m.mif"] =
        mifHeader(kMarkColumns) + "Point 150 250\nPoint ,251\n"; // an empty value leaves that of the point before
    given["m.mid"] = "1,\"a\"\n2,\"b\"\n";
    expectWay(run::Way::oddInput, given, "-cp m.mif g.flt -cpsd12");
}

TEST(CalibrationPointsAhead, APointThatTheLookHasNotSeenIsLookedUpInTheWholeGrid)
{
    // The second column has a name by which a look that does not count columns takes it for a point.
    GivenFiles given = marks();
    given["m.mif"] = mifHeader({"Data Float", "Point 130 240"}) + "Point 150 250\nPoint 160 260\n";
    given["m.mid"] = "1,\"a\"\n2,\"b\"\n";
    const std::size_t ahead = waysGone(run::Way::ahead);
    const Outcome found = runOperationOn(given, "-cp m.mif g.flt -cpsd12");
    EXPECT_EQ(waysGone(run::Way::ahead), ahead + 1);
    EXPECT_EQ(found, runOperationOn(given, "-cp m.mif g.flt -cpsd12", true));
}

// --- Damages ---------------------------------------------------------------------------------------------------------

// Points and ragged polygons; the first ones, and some others, stick out of the grid.
GivenFiles town()
{
    GivenFiles given;
    giveGrid(given, "g1", 3);
    giveGrid(given, "g2", 4, 0.9);
    given["c.csv"] = kHundredAMetre;
    std::string objects;
    std::string records;
    int number = 0;
    for (const auto& [x, y] : places(150)) {
        records += "\"House\",\"B" + std::to_string(++number) + "\",1.5,1\n";
        if (number % 3 == 0) {
            objects += pointMif(shown(x), shown(y));
            continue;
        }
        const double size = number % 40 == 1 ? 90 : 2 + number % 9;
        objects += "Region  1\n  6\n";
        for (int corner = 0; corner <= 5; ++corner) {
            const double angle = corner % 5 * 1.2566370614359172;
            const double radius = size * (corner % 2 == 0 ? 1 : 0.6);
            objects += shown(x + radius * std::cos(angle)) + ' ' + shown(y + radius * std::sin(angle)) + '\n';
        }
        objects += "    Pen (1,2,0)\n    Brush (1,0,16777215)\n";
    }
    given["b.mif"] = buildingsMif(objects);
    given["b.mid"] = records;
    return given;
}

std::string control(const std::string& method, const std::string& layers = "Read GIS Building == b.mif\n")
{
    return layers +
           "Read Curve House == c.csv\nRead Result % 1 == g1.flt\nRead Result % 5 == "
           "g2.flt\n"
           "Region Inspection Method == " +
           method + '\n';
}

TEST(DamagesAhead, AreThoseOfTheWholeGrids)
{
    GivenFiles given = town();
    for (const std::string method : {"Max", "Avg"}) {
        given["t.dmg"] = control(method);
        expectBothWaysTheSame(given, "-damages t.dmg", false);
    }
}

// The buildings of the town as two Shapefiles, of points and of polygons.
GivenFiles townOfShapefiles()
{
    GivenFiles given = town();
    given.erase("b.mif");
    given.erase("b.mid");
    const std::vector<DbfColumn> columns = {{"TYPE", 'C', 6}, {"ID", 'C', 6}, {"FFL", 'N', 6}, {"MULT", 'N', 4}};
    ShapefileRecords points{.objects = {}, .columns = columns, .values = {}};
    ShapefileRecords polygons = points;
    int number = 0;
    for (const auto& [x, y] : places(150)) {
        ShapefileRecords& layer = ++number % 3 == 0 ? points : polygons;
        layer.values.push_back(padded("House", 6) + padded("B" + std::to_string(number), 6) + padded("1.50", 6) +
                               padded("1.00", 4));
        if (number % 3 == 0) {
            layer.objects.push_back(pointRecord(x, y));
            continue;
        }
        const double size = number % 40 == 1 ? 90 : 2 + number % 9;
        layer.objects.push_back(
            partsRecord(5, {0}, {x, y - size, x - size, y + size / 2, x + size, y + size, x, y - size}));
    }
    giveShapefile(given, "points", 1, points);
    giveShapefile(given, "polygons", 5, polygons);
    return given;
}

TEST(DamagesAhead, AtBuildingsOfShapefilesAreThoseOfTheWholeGrids)
{
    GivenFiles given = townOfShapefiles();
    for (const std::string method : {"Max", "Avg"}) {
        given["t.dmg"] = control(method, "Read GIS Building == points.shp\nRead GIS Building == polygons.shp\n");
        expectBothWaysTheSameApart(given, "-damages t.dmg");
    }
}

// The name of a grid that is not there, answered by that of one that is.
TEST(DamagesAhead, OfAGridThatIsAskedForAreReadWhole)
{
    GivenFiles given = town();
    given["t.dmg"] = "Read GIS Building == b.mif\nRead Curve House == c.csv\nRead Result % 1 == none.asc\n";
    given["a.asc"] = ascGrid(plainLevels(3), {.xll = kWest, .yll = kSouth});
    const std::size_t odd = waysGone(run::Way::oddInput);
    const std::size_t ahead = waysGone(run::Way::ahead);
    giveMemoryAnswers("a.asc\n");
    const Outcome asked = runOperationOn(given, "-damages t.dmg");
    EXPECT_EQ(waysGone(run::Way::oddInput), odd + 1);
    EXPECT_EQ(waysGone(run::Way::ahead), ahead);
    EXPECT_NE(asked.console.find("CHECK 0008 - \"none.asc\" cannot be found"), std::string::npos);

    given["t.dmg"] = "Read GIS Building == b.mif\nRead Curve House == c.csv\nRead Result % 1 == a.asc\n";
    const Outcome named = runOperationOn(given, "-damages t.dmg");
    EXPECT_EQ(waysGone(run::Way::oddInput), odd + 1);
    EXPECT_EQ(asked.files.at("b_Damages.csv"), named.files.at("b_Damages.csv"));
}

TEST(DamagesAhead, OfBuildingsOutsideTheGridReadNothing)
{
    GivenFiles given = town();
    given["b.mif"] = buildingsMif(pointMif("0", "0") + boxMif(1, 1, 5, 5));
    given["b.mid"] = "\"House\",\"P\",1,1\n\"House\",\"B\",1,1\n";
    given["t.dmg"] = control("Max");
    const std::size_t ahead = waysGone(run::Way::ahead);
    const Outcome found = runOperationOn(given, "-damages t.dmg", true); // no read that could be refused
    EXPECT_EQ(waysGone(run::Way::ahead), ahead + 2);
    EXPECT_NE(found.console.find("WARNING - Building is outside grid area."), std::string::npos);
    EXPECT_NE(found.console.find("WARNING - Polygon partially or fully outside of results grid."), std::string::npos);
}

TEST(DamagesAhead, OfATextGridAreReadWhole)
{
    GivenFiles given = town();
    given["wl.asc"] = ascGrid({{1, 2, 3}, {4, 5, 6}});
    given["t.dmg"] = "Read GIS Building == b.mif\nRead Curve House == c.csv\nRead Result % 1 == wl.asc\n";
    expectWay(run::Way::textGrid, given, "-damages t.dmg");
}

} // namespace
} // namespace gridforge::test
