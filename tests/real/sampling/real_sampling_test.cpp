// Flood marks and a creek on real terrain, checked by a few plain lines over the cells.
#include "support/paths.h"
#include "support/tool_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace gridforge::test {
namespace {

const std::filesystem::path kFolder = std::filesystem::path(dataFolder()) / "merewether";

std::string bytesOf(const std::string& name)
{
    std::ifstream file(kFolder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void giveLayer(ToolRun& run, const std::string& name)
{
    for (const char* extension : {".mif", ".mid", ".shp", ".shx", ".dbf", ".prj"}) {
        run.give(name + extension, bytesOf(name + extension));
    }
}

struct RealGrid {
    double xll = 0;
    double yll = 0;
    double cellsize = 0;
    double null = 0;
    std::vector<std::vector<double>> rows; // from the south
};

RealGrid readGrid(const std::string& name)
{
    std::istringstream text(bytesOf(name));
    RealGrid grid;
    std::size_t columns = 0;
    std::size_t rows = 0;
    std::string word;
    text >> word >> columns >> word >> rows >> word >> grid.xll >> word >> grid.yll >> word >> grid.cellsize >> word >>
        grid.null;
    grid.rows.resize(rows, std::vector<double>(columns));
    for (std::size_t row = rows; row > 0; --row) {
        for (double& cell : grid.rows[row - 1]) {
            text >> cell;
        }
    }
    EXPECT_TRUE(text) << name;
    grid.cellsize = static_cast<double>(static_cast<float>(grid.cellsize)); // as the tool holds it
    return grid;
}

// Numbers of a comma-separated line behind the label.
std::vector<double> numbersOf(std::string line)
{
    if (line.starts_with('"')) {
        line.erase(0, line.find('"', 1) + 2);
    }
    std::ranges::replace(line, ',', ' ');
    std::istringstream text(line);
    std::vector<double> numbers;
    for (double number = 0; text >> number;) {
        numbers.push_back(number);
    }
    return numbers;
}

std::vector<std::vector<double>> tableOf(const ToolRun& run, const std::string& name)
{
    std::istringstream text(run.read(name));
    std::vector<std::vector<double>> rows;
    std::string line;
    std::getline(text, line);
    while (std::getline(text, line)) {
        rows.push_back(numbersOf(line));
    }
    return rows;
}

std::vector<std::array<double, 2>> verticesOf(const std::string& mif, const std::string& word)
{
    std::istringstream text(bytesOf(mif));
    std::vector<std::array<double, 2>> vertices;
    std::string line;
    bool inside = false;
    while (std::getline(text, line)) {
        std::istringstream values(line);
        std::array<double, 2> at{};
        if (line.starts_with(word)) {
            inside = true;
            values.ignore(static_cast<std::streamsize>(word.size()));
        }
        if (inside && values >> at[0] >> at[1]) {
            vertices.push_back(at);
        }
    }
    return vertices;
}

// The nearest cell that is not null, by its north-east corner; none beyond `radius` less what a polygon cuts off.
struct Nearest {
    double value = 0;
    double distance = 1e30;
};
Nearest nearestTo(const RealGrid& grid, double x, double y)
{
    Nearest nearest;
    for (std::size_t row = 0; row < grid.rows.size(); ++row) {
        for (std::size_t column = 0; column < grid.rows[row].size(); ++column) {
            const double dx = grid.xll + static_cast<double>(column + 1) * grid.cellsize - x;
            const double dy = grid.yll + static_cast<double>(row + 1) * grid.cellsize - y;
            const double distance = std::hypot(dx, dy);
            if (grid.rows[row][column] != grid.null && distance < nearest.distance) {
                nearest = {grid.rows[row][column], distance};
            }
        }
    }
    return nearest;
}

TEST(RealSampling, FloodMarksTakeTheNearestWetCell)
{
    if (!std::filesystem::exists(kFolder)) {
        GTEST_SKIP() << "no data";
    }
    constexpr double kSearch = 40;
    ToolRun run("-b -cp flood_marks.mif level_medium.asc -cpsd40");
    giveLayer(run, "flood_marks");
    run.give("level_medium.asc", bytesOf("level_medium.asc"));
    run.start();
    const auto rows = tableOf(run, "flood_marks.csv");
    const auto marks = verticesOf("flood_marks.mif", "Point ");
    ASSERT_EQ(marks.size(), 5U);
    ASSERT_EQ(rows.size(), marks.size()) << run.console();
    const RealGrid grid = readGrid("level_medium.asc");
    int found = 0;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        SCOPED_TRACE(i);
        const Nearest nearest = nearestTo(grid, marks[i][0], marks[i][1]);
        // Between the circles inside and around the polygon of 12 sides either may hold.
        if (nearest.distance < kSearch / 2 * 0.96) {
            ++found;
            EXPECT_NEAR(rows[i][1], nearest.value, 6e-4);
            EXPECT_NEAR(rows[i][2], nearest.value - rows[i][0], 2e-3);
            EXPECT_NEAR(rows[i][3], nearest.distance, 1e-3);
        } else if (nearest.distance > kSearch / 2) {
            EXPECT_EQ(rows[i][1], 99999);
        }
    }
    EXPECT_GE(found, 3); // the marks that this flood wets
}

TEST(RealSampling, TheInvertOfTheCreekIsTheLowestGroundAcrossIt)
{
    if (!std::filesystem::exists(kFolder)) {
        GTEST_SKIP() << "no data";
    }
    ToolRun run("-b -lp channel.mif dem.asc -lpmd1000 -cpsd20");
    giveLayer(run, "channel");
    run.give("dem.asc", bytesOf("dem.asc"));
    run.start();
    const auto vertices = verticesOf("channel.mif", "Pline ");
    std::vector<std::string> tables;
    for (const std::string& name : run.changedFiles()) {
        if (name.ends_with(".csv")) {
            tables.push_back(name);
        }
    }
    ASSERT_EQ(tables.size(), 1U) << run.console();
    const auto rows = tableOf(run, tables[0]);
    ASSERT_GT(rows.size(), 2U);
    ASSERT_EQ(rows.size(), vertices.size());
    const RealGrid grid = readGrid("dem.asc");
    double chainage = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(i);
        const auto& at = vertices[i];
        const auto& before = vertices[i > 0 ? i - 1 : i];
        const auto& from = vertices[i > 0 ? i - 1 : 0];
        const auto& to = vertices[std::min(i + 1, vertices.size() - 1)];
        chainage += std::hypot(at[0] - before[0], at[1] - before[1]);
        EXPECT_NEAR(rows[i][0], chainage, 0.02);
        // Directions are single precision, and with vertices on cell centres that decides many a rounding.
        const double degree = std::acos(-1.0) / 180;
        const float angle = static_cast<float>(std::atan2(to[1] - from[1], to[0] - from[0]) / degree) + 90.0F;
        const auto ux = static_cast<double>(static_cast<float>(std::cos(static_cast<double>(angle) * degree)));
        const auto uy = static_cast<double>(static_cast<float>(std::sin(static_cast<double>(angle) * degree)));
        double lowest = 99999;
        double left = -99999;
        double right = -99999;
        for (int k = -21; k <= 21; ++k) { // 20 / 0.99994 + 1
            const auto column = std::lround((at[0] + k * grid.cellsize * ux - grid.xll) / grid.cellsize);
            const auto row = std::lround((at[1] + k * grid.cellsize * uy - grid.yll) / grid.cellsize);
            if (row < 1 || column < 1 || row > std::ssize(grid.rows) || column > std::ssize(grid.rows[0])) {
                continue;
            }
            const double cell = grid.rows[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(column - 1)];
            if (cell == grid.null) {
                continue;
            }
            if (std::abs(k) <= 11) { // 20 / 0.99994 / 2 + 1
                lowest = std::min(lowest, cell);
            }
            left = k >= 0 ? std::max(left, cell) : left;
            right = k <= 0 ? std::max(right, cell) : right;
        }
        EXPECT_NEAR(rows[i][1], lowest, 6e-4);
        EXPECT_NEAR(rows[i][2], left, 6e-4);
        EXPECT_NEAR(rows[i][3], right, 6e-4);
    }
}

// A layer given in both families gives the same tables.
TEST(RealSampling, BothFamiliesGiveTheSameTables)
{
    if (!std::filesystem::exists(kFolder)) {
        GTEST_SKIP() << "no data";
    }
    const auto tables = [](const std::string& arguments, const std::string& layer) {
        std::vector<std::string> texts;
        for (const char* extension : {".mif", ".shp"}) {
            ToolRun run((arguments + layer + extension).c_str());
            giveLayer(run, layer);
            run.give("dem.asc", bytesOf("dem.asc"));
            run.start();
            for (const std::string& name : run.changedFiles()) {
                if (name.ends_with(".csv")) {
                    texts.push_back(run.read(name));
                }
            }
        }
        return texts;
    };
    for (const auto& texts :
         {tables("-b dem.asc -cpsd20 -cp ", "flood_marks"), tables("-b dem.asc -cpsd20 -lp ", "channel")}) {
        ASSERT_EQ(texts.size(), 2U);
        EXPECT_EQ(texts[0], texts[1]);
    }
}

} // namespace
} // namespace gridforge::test
