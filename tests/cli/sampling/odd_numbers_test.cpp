// Whole runs of -cp, -lp, -brkline and -na on grids that hold every odd number, against plain loops over their cells.
#include "support/layer_files.h"
#include "support/plain_sampling.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {
namespace {

using plain::OddTerrain;
using plain::PlacedCell;
using plain::realText;

constexpr float kNullOfGrid = -9999;
constexpr float kFarUp = 99999;

// --- Calibration points ----------------------------------------------------------------------------------------------

std::string nine(float value)
{
    return realText(static_cast<double>(value), 9, 3);
}

float distanceTo(const PlacedCell& cell, double x, double y)
{
    return static_cast<float>(std::hypot(x - cell.x, y - cell.y));
}

// The rows of the table and the records of the connections.
struct ExpectedMarks {
    std::string table = "\"Label\",\"Observed\",\"Modelled\",\"Difference\",\"Distance\",\"Minimum\",\"Maximum\"\r\n";
    std::string connections;
    float distanceOfHighest = 0; // of the last point that had one

    void add(const OddTerrain& terrain, const std::string& label, double x, double y)
    {
        float modelled = kFarUp;
        float distance = kFarUp;
        for (const PlacedCell& cell : terrain.inside(plain::circle(x, y, 4.5), 0)) {
            if (distanceTo(cell, x, y) < distance) {
                modelled = cell.value;
                distance = distanceTo(cell, x, y);
            }
        }
        const float difference = modelled > 99998 ? kFarUp : modelled - 1.5F;
        connections += nine(distance) + ",\"Closest\"\r\n";
        const auto cells = terrain.inside(plain::circle(x, y, 3.5), 0);
        if (const PlacedCell* lowest = plain::beyond(cells, kFarUp, false)) {
            distance = distanceTo(*lowest, x, y);
        }
        if (const PlacedCell* highest = plain::beyond(cells, -kFarUp, true)) {
            distanceOfHighest = distanceTo(*highest, x, y);
        }
        connections += nine(distance) + "\"Min\"\r\n" + nine(distanceOfHighest) + ",\"Max\"\r\n";
        table += "\"" + label + "\"," + nine(1.5F) + "," + nine(modelled) + "," + nine(difference) + "," +
                 nine(distance) + "," + nine(plain::valueBeyond(cells, kFarUp, false)) + "," +
                 nine(plain::valueBeyond(cells, -kFarUp, true)) + "\r\n";
    }
};

TEST(SamplingOddNumbers, GoThroughCalibrationPointsAsThroughPlainLoops)
{
    const OddTerrain terrain(kNullOfGrid, 21);
    ToolRun run("-b -cp p.mif -cpsd4.5 -cpmm3.5 a.flt");
    giveOddGrid(run, "a", kNullOfGrid, 21);
    std::string objects;
    std::string records;
    ExpectedMarks expected;
    for (int row = 4; row <= 37; row += 3) {
        for (int column = 4; column <= 49; column += 3) {
            const std::string label = "P" + std::to_string(100 * row + column);
            objects += "Point " + std::to_string(column) + ".3 " + std::to_string(row) + ".41\n";
            records += "1.5,\"" + label + "\"\n";
            expected.add(terrain, label, column + 0.3, row + 0.41);
        }
    }
    run.give("p.mif", mifHeader({"Obs Float", "Mark Char(20)"}) + objects);
    run.give("p.mid", records);
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_EQ(run.read("p.csv"), expected.table);
    EXPECT_EQ(run.read("p_Cn.mid"), expected.connections);
}

// --- Long profile ----------------------------------------------------------------------------------------------------

TEST(SamplingOddNumbers, GoThroughALongProfileAsThroughPlainLoops)
{
    const OddTerrain terrain(kNullOfGrid, 22);
    ToolRun run("-b -lp l.mif -lpmd5 -cpsd2 a.flt");
    giveOddGrid(run, "a", kNullOfGrid, 22);
    std::string objects;
    std::string records;
    for (int row = 4; row <= 36; row += 4) {
        objects += plain::lineAlong(row, 3, 50);
        records += "\"r" + std::to_string(row) + "\"\n";
    }
    run.give("l.mif", mifHeader({"Label Char(20)"}) + objects);
    run.give("l.mid", records);
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    const auto level = [](float value) { return "," + realText(static_cast<double>(value), 8, 3); };
    for (int row = 4; row <= 36; row += 4) {
        std::string expected = "\"Chainage\",\"Invert\",\"Left Bank\",\"Right Bank\"\r\n";
        for (int column = 3; column <= 50; ++column) {
            // Two steps to each side for the invert, three to one side for a bank; north is to the left.
            expected += realText(column - 3, 12, 2) +
                        level(plain::valueBeyond(terrain.upColumn(column, row - 2, row + 2), kFarUp, false)) +
                        level(plain::valueBeyond(terrain.upColumn(column, row, row + 3), -kFarUp, true)) +
                        level(plain::valueBeyond(terrain.upColumn(column, row - 3, row), -kFarUp, true)) + "\r\n";
        }
        EXPECT_EQ(run.read("l_r" + std::to_string(row) + ".csv"), expected);
    }
}

// --- Breaklines ------------------------------------------------------------------------------------------------------

struct Breakline {
    int width;
    std::string options;
};

// What is no number is neither higher nor lower than anything, and the extreme only where nothing else is.
float levelOf(const std::vector<PlacedCell>& cells, const std::string& options)
{
    const bool highest = options.find("Max") != std::string::npos;
    if (!highest && options.find("Min") == std::string::npos) {
        return plain::meanOf(cells);
    }
    float best = std::numeric_limits<float>::quiet_NaN();
    for (const PlacedCell& cell : cells) {
        best = std::isnan(best) || (highest ? cell.value > best : cell.value < best) ? cell.value : best;
    }
    return best;
}

// At the vertex beyond the column and row; null for no point.
float groundAt(const OddTerrain& terrain, int column, int row, const Breakline& line)
{
    std::vector<PlacedCell> cells;
    const bool across = line.options.starts_with("Perp");
    if (line.width == 0) {
        return terrain.at(row, column);
    }
    if (line.width == 1) {
        cells = terrain.inside({column - 0.5, row - 0.5, column + 1.5, row - 0.5, column + 1.5, row + 1.5, column - 0.5,
                                row + 1.5, column - 0.5, row - 0.5},
                               0);
    } else if (across) {
        cells = terrain.upColumn(column, row - 3, row + 3); // 4 / 2 + 1 steps to each side
    } else {
        cells = terrain.inside(plain::circle(column + 0.3, row + 0.41, line.width), 0.5);
    }
    if (cells.empty()) {
        return across ? kFarUp : terrain.null();
    }
    return levelOf(cells, line.options);
}

TEST(SamplingOddNumbers, GoThroughBreaklinesAsThroughPlainLoops)
{
    const OddTerrain terrain(kNullOfGrid, 23);
    ToolRun run("-b -brkline b.mif a.flt");
    giveOddGrid(run, "a", kNullOfGrid, 23);
    const std::vector<Breakline> lines = {{0, "cell"},    {1, "four"},    {1, "Max"},    {1, "Min"}, {4, "Perp"},
                                          {4, "PerpMax"}, {4, "PerpMin"}, {4, "circle"}, {4, "Max"}, {4, "Min"}};
    const auto record = [](float z, int width, const std::string& options) {
        return realText(static_cast<double>(z), 16, 3) + ",   0.000," + realText(width, 8, 3) + ",\"" + options +
               "\"\r\n";
    };
    std::string objects;
    std::string records;
    std::string expected;
    int row = 5;
    for (const Breakline& line : lines) {
        objects += plain::lineAlong(row, 4, 49);
        records += "0,100," + std::to_string(line.width) + ",\"" + line.options + "\"\n";
        for (int column = 4; column <= 49; ++column) {
            const float z = groundAt(terrain, column, row, line);
            expected += z == kNullOfGrid ? "" : record(z, 0, line.options);
        }
        expected += record(kFarUp, line.width, line.options);
        row += 3;
    }
    run.give("b.mif", mifHeader({"Z Float", "dZ Float", "Width Float", "Options Char(20)"}) + objects);
    run.give("b.mid", records);
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_EQ(run.read("b_brkline.mid"), expected);
}

// --- Nodal areas -----------------------------------------------------------------------------------------------------

bool isWhole(float height)
{
    const float fraction = std::fabs(height - std::trunc(height));
    return fraction < 0.001F || fraction > 0.999F;
}

// Step by step in single precision, up to the first height above the maximum.
Values ladder(float minimum, float maximum)
{
    const double tenths = std::floor((minimum + 0.002F) * 10.0F);
    const int held = tenths <= -2147483648.0  ? std::numeric_limits<int>::min()
                     : tenths >= 2147483647.0 ? std::numeric_limits<int>::max()
                                              : static_cast<int>(tenths);
    Values heights = {minimum + 0.001F, (static_cast<float>(held) + 1.0F) / 10.0F};
    for (int step = 1; step <= 20; ++step) {
        heights.push_back(heights.back() + 0.1F);
        if (heights.back() > maximum) {
            return heights;
        }
        if (step > 10 && isWhole(heights.back())) {
            break;
        }
    }
    const std::vector<std::pair<float, int>> stages = {{0.25F, 20}, {0.5F, 20}, {1.0F, 20}, {10.0F, 10}, {100.0F, 8}};
    for (const auto& [step, most] : stages) {
        for (int i = 1; i <= most; ++i) {
            heights.push_back(heights.back() + step);
            if (heights.back() > maximum) {
                return heights;
            }
        }
    }
    return heights;
}

struct ExpectedTable {
    std::string text = "\"Height\",\"Area\"\r\n";
    std::ptrdiff_t above = 0;
};

ExpectedTable areasOf(const std::vector<PlacedCell>& cells, const Values& heights)
{
    ExpectedTable expected;
    std::vector<int> counts(heights.size());
    for (const PlacedCell& cell : cells) {
        const auto at = std::ranges::find_if(heights, [&](float height) { return cell.value <= height; });
        if (at == heights.end()) {
            ++expected.above;
        } else {
            ++counts[static_cast<std::size_t>(at - heights.begin())];
        }
    }
    counts[0] = std::max(counts[0], 1);
    int area = 0;
    for (std::size_t i = 0; i < heights.size(); ++i) {
        area += counts[i];
        expected.text += realText(static_cast<double>(heights[i]), 8, 3) + "," + realText(area, 20, 3) + "\r\n";
    }
    return expected;
}

TEST(SamplingOddNumbers, GoThroughNodalAreasAsThroughPlainLoops)
{
    const OddTerrain terrain(kNullOfGrid, 24);
    ToolRun run("-b -na n.mif a.flt");
    giveOddGrid(run, "a", kNullOfGrid, 24);
    std::string objects;
    std::string records;
    std::map<std::string, std::string> expected;
    std::ptrdiff_t above = 0;
    for (int row = 1; row <= 36; row += 5) {
        for (int column = 1; column <= 48; column += 3) {
            // The corners of three columns and two rows.
            const auto corner = [](int c, int r) { return std::to_string(c) + ".5 " + std::to_string(r) + ".5\n"; };
            const auto cells = terrain.inside({column + 0.5, row + 0.5, column + 3.5, row + 0.5, column + 3.5,
                                               row + 2.5, column + 0.5, row + 2.5, column + 0.5, row + 0.5},
                                              0);
            const float lowest = plain::valueBeyond(cells, kFarUp, false);
            const float highest = plain::valueBeyond(cells, -kFarUp, true);
            if (highest - lowest < 0.001F) {
                continue; // such a region ends a run
            }
            const std::string name = "n" + std::to_string(100 * row + column) + ".csv";
            objects += "Region 1\n5\n" + corner(column, row) + corner(column + 3, row) + corner(column + 3, row + 2) +
                       corner(column, row + 2) + corner(column, row);
            records += "\"" + name + "\",\"S\",\"Node\",\"a\",\"b\",\"c\",\"d\",\"e\",\"f\",0,0,0\n";
            const ExpectedTable table = areasOf(cells, ladder(lowest, highest));
            expected[name] = table.text;
            above += table.above;
        }
    }
    std::vector<std::string> columns = {"ID Char(50)", "A Char(2)", "B Char(8)"};
    for (const std::string name : {"C", "D", "E", "F", "G", "H"}) {
        columns.push_back(name + " Char(20)");
    }
    columns.insert(columns.end(), {"I Float", "J Float", "Skew Float"});
    run.give("n.mif", mifHeader(columns) + objects);
    run.give("n.mid", records);
    run.start();
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_GT(expected.size(), 80U);
    for (const auto& [name, text] : expected) {
        EXPECT_EQ(run.read(name), text) << name;
    }
    EXPECT_GT(above, 50);
    EXPECT_EQ(std::ranges::count(run.consoleLines(), "ERROR - Should not be here. DEM value above maximum."), above);
}

} // namespace
} // namespace gridforge::test
