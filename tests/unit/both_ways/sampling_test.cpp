// What is sampled in windows of a grid is the same, and so is what the run says, whether the windows are read ahead, by however
// many threads and in whatever parts, or the grid is read whole.
#include "run/cells_ahead.h"
#include "support/both_ways.h"
#include "support/damages_files.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/layer_files.h"
#include "support/operation_run.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

constexpr std::size_t kRows = 300; // more than two bands of rows that are read together
constexpr std::size_t kColumns = 150;
constexpr double kWest = 100;
constexpr double kSouth = 200;

// Levels with patches of null, and cells that are no number.
Cells levels(std::uint32_t seed)
{
    std::mt19937 random(seed);
    Cells cells(kRows, std::vector<double>(kColumns));
    for (std::size_t r = 0; r < kRows; ++r) {
        for (std::size_t c = 0; c < kColumns; ++c) {
            const bool dry = std::sin(static_cast<double>(r) / 17) + std::cos(static_cast<double>(c) / 13) > 0.8;
            cells[r][c] = dry ? -9999 : static_cast<double>(random() % 4096) / 256;
        }
    }
    cells[100][70] = std::numeric_limits<double>::quiet_NaN();
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
    Cells cells = levels(1);
    cells[100][70] = 1;
    given["a.asc"] = ascGrid(cells, {.xll = kWest, .yll = kSouth});
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

std::string control(const std::string& method)
{
    return "Read GIS Building == b.mif\nRead Curve House == c.csv\nRead Result % 1 == g1.flt\nRead Result % 5 == "
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
