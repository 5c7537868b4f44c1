// Whole runs of -damages on a grid that holds every odd number, against plain loops over its cells.
#include "support/damages_files.h"
#include "support/plain_sampling.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

using plain::OddTerrain;
using plain::PlacedCell;

constexpr float kNullOfGrid = -9999;
constexpr float kFloor = 1.5F;
constexpr float kMultiplier = 2;

struct CurvePoint {
    float depth;
    float damage;
};

const std::vector<CurvePoint> kCurve = {{-200, 1000}, {-1, 10}, {0, 0}, {1, 50}, {100, 10000}};

float damageOf(float level)
{
    const float depth = level == kNullOfGrid ? -99.0F : level - kFloor;
    if (depth <= kCurve.front().depth) {
        return kCurve.front().damage * kMultiplier;
    }
    if (depth >= kCurve.back().depth) {
        return kCurve.back().damage * kMultiplier;
    }
    for (std::size_t k = 1; k < kCurve.size(); ++k) {
        const CurvePoint& from = kCurve[k - 1];
        const CurvePoint& to = kCurve[k];
        if (to.depth > depth) {
            return (from.damage + (depth - from.depth) / (to.depth - from.depth) * (to.damage - from.damage)) *
                   kMultiplier;
        }
    }
    return kNaN; // of a depth that is none
}

// Of a polygon.
float levelOf(const std::vector<PlacedCell>& cells, bool average)
{
    if (average) {
        return cells.empty() ? kNullOfGrid : plain::meanOf(cells);
    }
    const float highest = plain::valueBeyond(cells, -999, true);
    return highest > -998 ? highest : kNullOfGrid;
}

struct Town {
    std::string objects;
    std::string records;
    std::vector<float> damages;
    int pastCurve = 0;

    void add(const std::string& object, float level)
    {
        objects += object;
        records += "\"House\",\"B\",1.5,2\n";
        damages.push_back(damageOf(level));
        pastCurve += level - kFloor >= kCurve.back().depth ? 1 : 0;
    }
};

// A point at every fourth cell, and a box around two rows of three corners beside it.
Town townOn(const OddTerrain& terrain, bool average)
{
    Town town;
    for (int row = 3; row <= 37; row += 2) {
        for (int column = 3; column <= 48; column += 3) {
            town.add(pointMif(std::to_string(column) + ".3", std::to_string(row) + ".41"), terrain.at(row, column));
            const auto cells = terrain.inside({column + 0.5, row + 0.5, column + 3.5, row + 0.5, column + 3.5,
                                               row + 2.5, column + 0.5, row + 2.5, column + 0.5, row + 0.5},
                                              0);
            town.add(boxMif(column + 0.5, row + 0.5, column + 3.5, row + 2.5), levelOf(cells, average));
        }
    }
    return town;
}

// With decimals by its size, and without the zeros at its end.
std::string damageText(float damage)
{
    int decimals = 6;
    for (double limit = 0.01; decimals > 0 && std::fabs(static_cast<double>(damage)) >= limit; limit *= 10) {
        --decimals;
    }
    std::string text = plain::realText(static_cast<double>(damage), 0, decimals);
    if (decimals == 0) {
        text += '.';
    }
    return std::isnan(damage) ? "NaN" : text.substr(0, text.find_last_not_of('0') + 1);
}

void expectDamages(const std::string& method)
{
    const Town town = townOn(OddTerrain(kNullOfGrid, 29), method == "Avg");
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, town.objects, town.records);
    giveOddGrid(run, "a", kNullOfGrid, 29);
    std::string curve = "Depth,Damage\n";
    for (const CurvePoint& point : kCurve) {
        curve += std::to_string(point.depth) + "," + std::to_string(point.damage) + "\n";
    }
    run.give("house.csv", curve);
    run.give("c.dmg", "Maximum Buildings == 2000\nRead GIS Building == h.mif\nRead Curve House == house.csv\n"
                      "Read Result % 1 == a.flt\nRegion Inspection Method == " +
                          method + "\n");
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_EQ(std::ranges::count(run.consoleLines(), "Depth exceeds highest value in curve."), town.pastCurve);
    std::string expected =
        "Property Type,Property ID, Floor Level, Multiplier,Damages 1.000 AEP (%),Average Annual Damage\r\n";
    for (const float damage : town.damages) {
        expected += "\"House\",\"B\",1.5,2.," + damageText(damage) + ",0.\r\n";
    }
    EXPECT_EQ(run.read("h_Damages.csv"), expected);
}

TEST(DamagesOddNumbers, GoThroughTheHighestLevelsAsThroughPlainLoops)
{
    expectDamages("Max");
}

TEST(DamagesOddNumbers, GoThroughTheMeanLevelsAsThroughPlainLoops)
{
    expectDamages("Avg");
}

} // namespace
} // namespace gridforge::test
