// Flood marks and a creek on real terrain, checked by a few plain lines over the cells.
#include "support/ogr.h"
#include "support/plain_region.h"
#include "support/real_folder.h"
#include "support/tool_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>

namespace gridforge::test {
namespace {

const RealFolder kReal("merewether");

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

// The vertices behind each line that starts with the word, up to the next line that is no vertex.
std::vector<std::array<double, 2>> verticesIn(const std::string& mif, const std::string& word)
{
    std::istringstream text(mif);
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

std::vector<std::array<double, 2>> verticesOf(const std::string& mif, const std::string& word)
{
    return verticesIn(kReal.bytesOf(mif), word);
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
    if (!std::filesystem::exists(kReal.path())) {
        GTEST_SKIP() << "no data";
    }
    constexpr double kSearch = 40;
    ToolRun run("-b -cp flood_marks.mif level_medium.asc -cpsd40");
    kReal.giveLayer(run, "flood_marks");
    run.give("level_medium.asc", kReal.bytesOf("level_medium.asc"));
    run.start();
    const auto rows = tableOf(run, "flood_marks.csv");
    const auto marks = verticesOf("flood_marks.mif", "Point ");
    ASSERT_EQ(marks.size(), 5U);
    ASSERT_EQ(rows.size(), marks.size()) << run.console();
    const RealGrid grid = kReal.readGrid("level_medium.asc");
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
    if (!std::filesystem::exists(kReal.path())) {
        GTEST_SKIP() << "no data";
    }
    ToolRun run("-b -lp channel.mif dem.asc -lpmd1000 -cpsd20");
    kReal.giveLayer(run, "channel");
    run.give("dem.asc", kReal.bytesOf("dem.asc"));
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
    const RealGrid grid = kReal.readGrid("dem.asc");
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

// The numbers and, behind them, the rest of each line of a .mid; numbers may stand in blanks.
std::vector<std::vector<double>> recordsOf(const ToolRun& run, const std::string& name)
{
    std::istringstream text(run.read(name));
    std::vector<std::vector<double>> records;
    std::string line;
    while (std::getline(text, line)) {
        std::replace(line.begin(), line.end(), ',', ' ');
        std::istringstream values(line);
        records.emplace_back();
        for (double value = 0; values >> value;) {
            records.back().push_back(value);
        }
    }
    return records;
}

// The vertices of the last object of a written .mif, which is a line.
std::vector<std::array<double, 2>> lastLine(const std::string& mif)
{
    std::istringstream text(mif.substr(mif.rfind("Pline")));
    std::string word;
    std::size_t count = 0;
    text >> word >> count;
    std::vector<std::array<double, 2>> vertices(count);
    for (auto& vertex : vertices) {
        text >> vertex[0] >> vertex[1];
    }
    EXPECT_TRUE(text);
    return vertices;
}

// A run over the creek with these attributes, and the result as points: the vertices with their elevations, as long as each
// vertex has one.
struct Levels {
    std::vector<std::array<double, 2>> vertices;
    std::vector<double> z;
};
Levels creekLevels(const std::string& attributes)
{
    ToolRun run("-b -brkline channel.mif dem.asc");
    kReal.giveLayer(run, "channel");
    run.give("dem.asc", kReal.bytesOf("dem.asc"));
    std::string layer = kReal.bytesOf("channel.mif");
    layer.replace(layer.find("Columns 1"), layer.find("Data") - layer.find("Columns 1"),
                  "Columns 4\n  Z Float\n  dZ Float\n  Width Float\n  Options Char(20)\n");
    run.give("channel.mif", layer);
    run.give("channel.mid", attributes + "\n");
    run.start();
    Levels levels;
    levels.vertices = lastLine(run.read("channel_brkline.mif"));
    auto records = recordsOf(run, "channel_brkline.mid");
    EXPECT_EQ(records.back()[0], 99999) << run.console();
    records.pop_back();
    for (const auto& record : records) {
        levels.z.push_back(record[0]);
    }
    EXPECT_EQ(levels.z.size(), levels.vertices.size());
    return levels;
}

TEST(RealSampling, VerticesAlongTheCreekAreNeverFurtherApartThanTold)
{
    if (!std::filesystem::exists(kReal.path())) {
        GTEST_SKIP() << "no data";
    }
    const auto read = verticesOf("channel.mif", "Pline ");
    const Levels levels = creekLevels("0,3,0,\"\"");
    double asRead = 0;
    for (std::size_t i = 1; i < read.size(); ++i) {
        asRead += std::hypot(read[i][0] - read[i - 1][0], read[i][1] - read[i - 1][1]);
    }
    double made = 0;
    for (std::size_t i = 1; i < levels.vertices.size(); ++i) {
        const double step = std::hypot(levels.vertices[i][0] - levels.vertices[i - 1][0],
                                       levels.vertices[i][1] - levels.vertices[i - 1][1]);
        EXPECT_LT(step, 3.0001) << i;
        made += step;
    }
    EXPECT_NEAR(made, asRead, 1e-3);
    EXPECT_GT(levels.vertices.size(), static_cast<std::size_t>(asRead / 3));
    // One cell each: the one that the distances from the grid's corner tell.
    const RealGrid grid = kReal.readGrid("dem.asc");
    for (std::size_t i = 0; i < levels.z.size(); ++i) {
        const auto index = [&](double from) {
            const auto whole = static_cast<std::size_t>(from / grid.cellsize);
            return std::fmod(from, grid.cellsize) > 0.5 ? whole + 1 : whole;
        };
        const double x = levels.vertices[i][0] - grid.xll;
        const double y = levels.vertices[i][1] - grid.yll;
        // Six decimals of a written vertex may decide a rounding: these are left out.
        if (std::abs(std::fmod(x, grid.cellsize) - 0.5) > 1e-5 && std::abs(std::fmod(y, grid.cellsize) - 0.5) > 1e-5) {
            EXPECT_NEAR(levels.z[i], grid.rows[index(y) - 1][index(x) - 1], 6e-4) << i;
        }
    }
}

TEST(RealSampling, CirclesAlongTheCreekTakeTheLowestAndTheHighestGround)
{
    if (!std::filesystem::exists(kReal.path())) {
        GTEST_SKIP() << "no data";
    }
    const RealGrid grid = kReal.readGrid("dem.asc");
    const Levels lowest = creekLevels("0,10,12,Min");
    const Levels highest = creekLevels("0,10,12,Max");
    const Levels mean = creekLevels("0,10,12,mean");
    ASSERT_EQ(lowest.z.size(), highest.z.size());
    ASSERT_EQ(lowest.z.size(), mean.z.size());
    std::size_t compared = 0;
    for (std::size_t i = 0; i < lowest.z.size(); ++i) {
        SCOPED_TRACE(i);
        if (lowest.z[i] == 99999) {
            continue;
        }
        // The polygon lies between the circle of 6 and the one of 6 cos 15 within it.
        std::array<double, 2> low = {1e9, 1e9};
        std::array<double, 2> high = {-1e9, -1e9};
        for (std::size_t row = 0; row < grid.rows.size(); ++row) {
            for (std::size_t column = 0; column < grid.rows[row].size(); ++column) {
                const double dx =
                    grid.xll + (static_cast<double>(column) + 0.5) * grid.cellsize - lowest.vertices[i][0];
                const double dy = grid.yll + (static_cast<double>(row) + 0.5) * grid.cellsize - lowest.vertices[i][1];
                const double distance = std::hypot(dx, dy);
                for (std::size_t k = 0; k < 2; ++k) {
                    if (distance < (k == 0 ? 5.79 : 6.01)) {
                        low[k] = std::min(low[k], grid.rows[row][column]);
                        high[k] = std::max(high[k], grid.rows[row][column]);
                    }
                }
            }
        }
        EXPECT_LE(lowest.z[i], low[0] + 6e-4);
        EXPECT_GE(lowest.z[i], low[1] - 6e-4);
        EXPECT_GE(highest.z[i], high[0] - 6e-4);
        EXPECT_LE(highest.z[i], high[1] + 6e-4);
        EXPECT_GE(mean.z[i], lowest.z[i]);
        EXPECT_LE(mean.z[i], highest.z[i]);
        ++compared;
    }
    EXPECT_GT(compared, 40U);
}

// The breaklines that come with the data reach over the edge of the terrain.
TEST(RealSampling, BreaklinesOfBothFamiliesHoldTheSamePoints)
{
    if (!std::filesystem::exists(kReal.path())) {
        GTEST_SKIP() << "no data";
    }
    ToolRun mif("-b -brkline breaklines.mif dem.asc");
    ToolRun shp("-b -brkline breaklines.shp dem.asc");
    for (ToolRun* run : {&mif, &shp}) {
        kReal.giveLayer(*run, "breaklines");
        run->give("dem.asc", kReal.bytesOf("dem.asc"));
        run->start();
    }
    auto records = recordsOf(mif, "breaklines_brkline.mid");
    const std::string table = shp.read("breaklines_brkline_P.dbf");
    constexpr std::size_t kHeader = 32 + 4 * 32 + 1;
    constexpr std::size_t kRecord = 1 + 3 * 16 + 20;
    const std::size_t points = (table.size() - kHeader) / kRecord;
    std::size_t at = 0;
    std::size_t outside = 0;
    for (const auto& record : records) {
        if (record[0] == 99999 && record[2] > 0) {
            continue; // a line, but for the last, whose width is 0
        }
        if (at == points) {
            break;
        }
        EXPECT_EQ(std::stod(table.substr(kHeader + at * kRecord + 1, 16)), record[0]) << at;
        outside += record[0] == 99999 ? 1 : 0;
        ++at;
    }
    EXPECT_EQ(at, points);
    EXPECT_GT(points, 400U);
    EXPECT_GT(outside, 10U);
    EXPECT_LT(outside, points / 3);
}

TEST(RealSampling, NodalAreasCountTheGroundBelowEachHeight)
{
    if (!std::filesystem::exists(kReal.path()) || !haveOgr()) {
        GTEST_SKIP() << "no data or no OGR";
    }
    std::vector<std::string> tables;
    for (const char* extension : {".mif", ".shp"}) {
        ToolRun run((std::string("-b -na areas") + extension + " dem.asc").c_str());
        kReal.giveLayer(run, "areas");
        run.give("dem.asc", kReal.bytesOf("dem.asc"));
        // The second region alone, the houses, with the attributes of a node.
        const std::string layer = kReal.bytesOf("areas.mif");
        const std::size_t columns = layer.find("Columns");
        const std::size_t second = layer.find("Region", layer.find("Region") + 1);
        run.give("areas.mif", layer.substr(0, columns) +
                                  "Columns 12\n  a Char(50)\n  b Char(2)\n  c Char(8)\n  d Char(20)\n  e Char(20)\n"
                                  "  f Char(20)\n  g Char(20)\n  h Char(20)\n  i Char(20)\n  j Float\n  k Float\n"
                                  "  l Float\nData\n\n" +
                                  layer.substr(second));
        run.give("areas.mid", "\"houses.csv\",\"S\",\"Node\",\"1\",\"2\",\"3\",\"4\",\"5\",\"6\",0,0,0\n");
        if (extension == std::string(".shp")) {
            ASSERT_TRUE(ogrConvert("-overwrite -f 'ESRI Shapefile' '" + run.folder().string() + "/areas.shp' '" +
                                   run.folder().string() + "/areas.mif'"));
        }
        run.start();
        tables.push_back(run.read("houses.csv"));
        if (tables.size() > 1) {
            break;
        }
        const RealGrid grid = kReal.readGrid("dem.asc");
        std::vector<double> ring;
        for (const auto& vertex : verticesIn(layer.substr(second), "Region ")) {
            ring.insert(ring.end(), vertex.begin(), vertex.end());
        }
        const auto rows = tableOf(run, "houses.csv");
        ASSERT_GT(rows.size(), 20U) << run.console();
        for (const auto& row : rows) {
            double cells = 0;
            double doubtful = 1; // the first row has one cell at least
            for (std::size_t r = 0; r < grid.rows.size(); ++r) {
                for (std::size_t c = 0; c < grid.rows[r].size(); ++c) {
                    const double cell = grid.rows[r][c];
                    if (cell == grid.null || cell > row[0] + 6e-4) {
                        continue;
                    }
                    const double x = grid.xll + static_cast<double>(c + 1) * grid.cellsize;
                    const double y = grid.yll + static_cast<double>(r + 1) * grid.cellsize;
                    const auto [inside, near] = verdict(ring, x, y);
                    cells += inside ? 1 : 0;
                    doubtful += near || cell > row[0] - 6e-4 ? 1 : 0;
                }
            }
            const double cellArea = grid.cellsize * grid.cellsize;
            EXPECT_NEAR(row[1], cells * cellArea, doubtful * cellArea + 1e-3) << row[0];
            EXPECT_LT(doubtful, 60) << row[0];
        }
        EXPECT_GT(rows.back()[1], 20000);
    }
    EXPECT_EQ(tables[0], tables[1]);
}

TEST(RealSampling, NodalAreasByTheBayouAreThoseOfTheirRegions)
{
    const std::filesystem::path bayou = std::filesystem::path(dataFolder()) / "bayou";
    if (!std::filesystem::exists(bayou)) {
        GTEST_SKIP() << "no data";
    }
    const std::string layer = readWhole(bayou / "regions.mif");
    const std::size_t columns = layer.find("Columns");
    std::size_t region = layer.find("Region");
    for (const char* name : {"middle", "west"}) { // the third reaches over the edge
        const std::size_t next = layer.find("Region", region + 1);
        const std::string object = layer.substr(region, next - region);
        region = next;
        ToolRun run("-b -na n.mif dem.asc");
        run.give("dem.asc", readWhole(bayou / "dem.asc"));
        std::string head = layer.substr(0, columns) + "Columns 12\n";
        for (int i = 0; i < 12; ++i) {
            head.append("  c").append(std::to_string(i)).append(i < 9 ? " Char(50)\n" : " Float\n");
        }
        run.give("n.mif", head.append("Data\n\n").append(object));
        run.give("n.mid", std::string(name) + ",a,b,c,d,e,f,g,h,0,0,0\n");
        run.start();
        const auto rows = tableOf(run, name);
        ASSERT_GT(rows.size(), 20U) << run.console();
        // By the trapezoids below its edges; the cells that an edge crosses may count or not.
        const auto ring = verticesIn(object, "Region ");
        double area = 0;
        double outline = 0;
        for (std::size_t i = 0; i + 1 < ring.size(); ++i) {
            area += (ring[i + 1][0] - ring[i][0]) * (ring[i + 1][1] + ring[i][1] - 2 * ring[0][1]) / 2;
            outline += std::hypot(ring[i + 1][0] - ring[i][0], ring[i + 1][1] - ring[i][1]);
        }
        EXPECT_NEAR(rows.back()[1], std::abs(area), outline * 3) << name;
        EXPECT_GT(std::abs(area), outline * 30);
        for (std::size_t i = 1; i < rows.size(); ++i) {
            EXPECT_GT(rows[i][0], rows[i - 1][0]);
            EXPECT_GE(rows[i][1], rows[i - 1][1]);
        }
    }
}

// A layer given in both families gives the same tables.
TEST(RealSampling, BothFamiliesGiveTheSameTables)
{
    if (!std::filesystem::exists(kReal.path())) {
        GTEST_SKIP() << "no data";
    }
    const auto tables = [](const std::string& arguments, const std::string& layer) {
        std::vector<std::string> texts;
        for (const char* extension : {".mif", ".shp"}) {
            ToolRun run((arguments + layer + extension).c_str());
            kReal.giveLayer(run, layer);
            run.give("dem.asc", kReal.bytesOf("dem.asc"));
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
