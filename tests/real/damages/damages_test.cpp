// Houses of a street and three floods in it, checked by a few plain lines over outlines, cells and curves.
#include "support/paths.h"
#include "support/scratch_folder.h"
#include "support/tool_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace gridforge::test {
namespace {

const std::filesystem::path kFolder = std::filesystem::path(dataFolder()) / "merewether";
const std::array<std::string, 3> kFloods = {"level_small", "level_medium", "level_large"}; // 10, 2 and 0.5 %

struct House {
    std::string type;
    std::string id;
    double floor = 0;
    double multiplier = 0;
    std::vector<std::array<double, 2>> outline;
};

std::vector<House> readHouses()
{
    std::vector<House> houses;
    std::istringstream records(readWhole(kFolder / "buildings.mid"));
    for (std::string line; std::getline(records, line);) {
        std::erase(line, '"');
        std::ranges::replace(line, ',', ' ');
        std::istringstream values(line);
        House house;
        values >> house.type >> house.id >> house.floor >> house.multiplier;
        houses.push_back(house);
    }
    std::istringstream objects(readWhole(kFolder / "buildings.mif"));
    std::size_t count = 0;
    for (std::string line; std::getline(objects, line);) {
        if (line.starts_with("Region")) {
            int vertices = 0;
            objects >> vertices;
            auto& outline = houses.at(count++).outline;
            outline.resize(static_cast<std::size_t>(vertices));
            for (auto& vertex : outline) {
                objects >> vertex[0] >> vertex[1];
            }
        }
    }
    EXPECT_EQ(count, houses.size());
    return houses;
}

struct Levels {
    double xll = 0;
    double yll = 0;
    double cellsize = 0;
    double null = 0;
    std::vector<std::vector<double>> rows; // from the south
};

Levels readLevels(const std::string& name)
{
    std::istringstream text(readWhole(kFolder / (name + ".asc")));
    Levels levels;
    std::size_t columns = 0;
    std::size_t rows = 0;
    std::string word;
    text >> word >> columns >> word >> rows >> word >> levels.xll >> word >> levels.yll >> word >> levels.cellsize >>
        word >> levels.null;
    levels.cellsize = static_cast<double>(static_cast<float>(levels.cellsize)); // as the tool holds it
    levels.rows.resize(rows, std::vector<double>(columns));
    for (std::size_t row = rows; row > 0; --row) {
        for (double& cell : levels.rows[row - 1]) {
            text >> cell;
        }
    }
    EXPECT_TRUE(text) << name;
    return levels;
}

using Curve = std::vector<std::array<double, 2>>;

Curve readCurve(const std::string& name)
{
    std::istringstream text(readWhole(kFolder / name));
    Curve curve;
    std::string line;
    std::getline(text, line);
    while (std::getline(text, line)) {
        curve.push_back({std::stod(line), std::stod(line.substr(line.find(',') + 1))});
    }
    return curve;
}

double damageAt(const Curve& curve, double depth)
{
    if (depth <= curve.front()[0]) {
        return curve.front()[1];
    }
    for (std::size_t k = 1; k < curve.size(); ++k) {
        if (curve[k][0] > depth) {
            return std::lerp(curve[k - 1][1], curve[k][1], (depth - curve[k - 1][0]) / (curve[k][0] - curve[k - 1][0]));
        }
    }
    return curve.back()[1];
}

// By the crossings of a ray to the east.
bool isInside(const std::vector<std::array<double, 2>>& ring, double x, double y)
{
    bool inside = false;
    for (std::size_t i = 1; i < ring.size(); ++i) {
        const auto& [x1, y1] = ring[i - 1];
        const auto& [x2, y2] = ring[i];
        if ((y1 > y) != (y2 > y) && x < x1 + (x2 - x1) * (y - y1) / (y2 - y1)) {
            inside = !inside;
        }
    }
    return inside;
}

// The levels of the cells whose north-east corner is in the house.
std::vector<double> levelsIn(const House& house, const Levels& levels)
{
    std::vector<double> found;
    for (std::size_t row = 0; row < levels.rows.size(); ++row) {
        for (std::size_t column = 0; column < levels.rows[row].size(); ++column) {
            const double x = levels.xll + static_cast<double>(column + 1) * levels.cellsize;
            const double y = levels.yll + static_cast<double>(row + 1) * levels.cellsize;
            if (levels.rows[row][column] != levels.null && isInside(house.outline, x, y)) {
                found.push_back(levels.rows[row][column]);
            }
        }
    }
    return found;
}

double expectedDamage(const House& house, const std::vector<double>& levels, const Curve& curve, bool mean)
{
    if (levels.empty()) {
        return curve.front()[1] * house.multiplier;
    }
    double level = *std::ranges::max_element(levels);
    if (mean) { // summed in single precision, as the tool does
        float sum = 0;
        for (const double one : levels) {
            sum += static_cast<float>(one);
        }
        level = static_cast<double>(sum / static_cast<float>(levels.size()));
    }
    return damageAt(curve, level - house.floor) * house.multiplier;
}

std::vector<std::vector<double>> damagesOf(const std::string& table)
{
    std::vector<std::vector<double>> rows;
    std::istringstream text(table);
    std::string line;
    std::getline(text, line);
    while (std::getline(text, line)) {
        std::vector<double> values;
        std::istringstream fields(line);
        for (std::string field; std::getline(fields, field, ',');) {
            values.push_back(field.starts_with('"') ? 0 : std::stod(field));
        }
        rows.emplace_back(values.begin() + 4, values.end() - 1);
    }
    return rows;
}

std::string tableOfRun(const std::string& layer, const std::string& method)
{
    ToolRun run("-b -damages c.dmg");
    for (const char* extension : {".mif", ".mid", ".shp", ".shx", ".dbf", ".prj"}) {
        run.give(std::string("buildings") + extension, readWhole(kFolder / (std::string("buildings") + extension)));
    }
    for (const std::string name :
         {"curve_house.csv", "curve_large.csv", "level_small.asc", "level_medium.asc", "level_large.asc"}) {
        run.give(name, readWhole(kFolder / name));
    }
    run.give("c.dmg", "Region Inspection Method == " + method + "\nRead GIS Buildings == buildings" + layer +
                          "\nRead Curve House == curve_house.csv\nRead Curve Large == curve_large.csv\n"
                          "Read Result 0.005 == level_large.asc\nRead Result % 10 == level_small.asc\n"
                          "Read Result % 2 == level_medium.asc\n");
    run.start();
    return run.has("buildings_Damages.csv") ? run.read("buildings_Damages.csv") : run.console();
}

TEST(RealDamages, HousesOfAStreetInThreeFloods)
{
    if (!std::filesystem::exists(kFolder)) {
        GTEST_SKIP() << "no real data in " << kFolder;
    }
    const std::vector<House> houses = readHouses();
    ASSERT_EQ(houses.size(), 58U);
    const std::map<std::string, Curve> curves = {{"House", readCurve("curve_house.csv")},
                                                 {"Large", readCurve("curve_large.csv")}};
    for (const std::string method : {"Max", "Avg"}) {
        const std::string table = tableOfRun(".mif", method);
        EXPECT_EQ(tableOfRun(".shp", method), table);
        const auto damages = damagesOf(table);
        ASSERT_EQ(damages.size(), houses.size());
        int harmed = 0;
        for (std::size_t flood = 0; flood < kFloods.size(); ++flood) {
            const Levels levels = readLevels(kFloods[flood]);
            for (std::size_t i = 0; i < houses.size(); ++i) {
                const double expected =
                    expectedDamage(houses[i], levelsIn(houses[i], levels), curves.at(houses[i].type), method == "Avg");
                // Depths in single precision are good to a few millionths of a metre, and the curves rise by 75000 a metre.
                EXPECT_NEAR(damages[i].at(flood), expected, 1 + 1e-5 * expected) << houses[i].id << ' ' << method;
                harmed += expected > 0 ? 1 : 0;
            }
        }
        EXPECT_GT(harmed, 20);
    }
}

} // namespace
} // namespace gridforge::test
