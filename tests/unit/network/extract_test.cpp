#include "network/extract.h"

#include "plane/geometry.h"
#include "support/odd_cells.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

constexpr float kNullCell = -9999.0F;

struct Terrain {
    GridHeader header;
    Grid cells;
};

Terrain terrain(std::int32_t rows, std::int32_t columns, float cellsize = 1, double xll = 0, double yll = 0)
{
    Terrain made;
    made.header.nrows = rows;
    made.header.ncols = columns;
    made.header.xll = xll;
    made.header.yll = yll;
    made.header.cellsize = cellsize;
    made.header.cellsize8 = static_cast<double>(cellsize);
    made.header.null = kNullCell;
    EXPECT_TRUE(made.cells.allocate(rows, columns));
    return made;
}

// Cell (row, column) is 10 row + column.
Terrain numbered(std::int32_t rows, std::int32_t columns)
{
    Terrain made = terrain(rows, columns);
    for (std::int32_t r = 1; r <= rows; ++r) {
        for (std::int32_t c = 1; c <= columns; ++c) {
            made.cells(r, c) = static_cast<float>(10 * r + c);
        }
    }
    return made;
}

network::NbcSection sectionAt(const std::vector<double>& xy, const std::string& buffer = "",
                              const std::string& extraction = "", float distance = 0)
{
    network::NbcSection section;
    for (std::size_t i = 0; i + 1 < xy.size(); i += 2) {
        section.pointX.push_back(xy[i]);
        section.pointY.push_back(xy[i + 1]);
    }
    section.pointZ.assign(section.pointX.size(), kNullCell);
    section.pointMaterial.assign(section.pointX.size(), kNullCell);
    section.cells = network::sectionCellsFrom(buffer);
    section.extraction = network::extractionFrom(extraction);
    section.bufferDistance = distance;
    return section;
}

std::vector<float> elevations(const Terrain& t, network::NbcSection section)
{
    network::sampleSection(t.header, t.cells, network::PointValue::elevation, section);
    return section.pointZ;
}

// --- The plain forms: every step, every cell of the window -----------------------------------------------------------

struct PlainSum {
    float minimum = 99999.0F;
    float maximum = -99999.0F;
    float sum = 0;
    int count = 0;

    void take(float value)
    {
        ++count;
        maximum = std::max(maximum, value);
        minimum = std::min(minimum, value);
        sum += value;
    }
    float value(const std::string& method) const
    {
        return method == "Max" ? maximum : method == "Min" ? minimum : sum / static_cast<float>(count);
    }
};

float angle(const network::NbcSection& s, std::size_t from, std::size_t to)
{
    return static_cast<float>(atan2d(s.pointY[to] - s.pointY[from], s.pointX[to] - s.pointX[from]));
}

PlainSum plainPerp(const Terrain& t, const network::NbcSection& s, std::size_t i)
{
    const std::size_t last = s.pointX.size() - 1;
    float direction = i == 0      ? angle(s, 0, 1)
                      : i == last ? angle(s, last - 1, last)
                                  : (angle(s, i - 1, i) + angle(s, i, i + 1)) * 0.5F;
    direction += 90.0F;
    if (direction > 360.0F) {
        direction -= 360.0F;
    }
    const double dx = t.header.cellsize8;
    const auto ux = static_cast<double>(static_cast<float>(cosd(static_cast<double>(direction))));
    const auto uy = static_cast<double>(static_cast<float>(sind(static_cast<double>(direction))));
    const int steps = static_cast<int>(s.bufferDistance / t.header.cellsize * 0.5F + 1.0F);
    PlainSum sum;
    for (int k = -steps; k <= steps; ++k) {
        const double x = s.pointX[i] + dx * k * ux;
        const double y = s.pointY[i] + dx * k * uy;
        const double column = std::round((x - t.header.xll) / dx);
        const double row = std::round((y - t.header.yll) / dx);
        if (column >= 1 && column <= t.header.ncols && row >= 1 && row <= t.header.nrows) {
            const float value = t.cells(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column));
            if (value != t.header.null) {
                sum.take(value);
            }
        }
    }
    return sum;
}

PlainSum plainBuffer(const Terrain& t, const network::NbcSection& s, std::size_t i)
{
    std::array<double, 14> ringX{};
    std::array<double, 14> ringY{};
    const double x = s.pointX[i];
    const double y = s.pointY[i];
    for (std::size_t m = 0; m < 14; ++m) {
        const auto degrees = static_cast<double>((static_cast<float>(m % 12) / 12.0F) * 360.0F);
        ringX[m] = x + static_cast<double>(s.bufferDistance * static_cast<float>(sind(degrees)) * 0.5F);
        ringY[m] = y + static_cast<double>(s.bufferDistance * static_cast<float>(cosd(degrees)) * 0.5F);
    }
    const std::array<std::int32_t, 1> ringEnd = {13};
    const double xmin = *std::min_element(ringX.begin(), ringX.end());
    const auto r = static_cast<double>(s.bufferDistance * 0.5F);
    const double dx = t.header.cellsize8;
    const auto columnFrom = static_cast<std::int32_t>(((x - r) - t.header.xll) / dx);
    const auto columnTo = static_cast<std::int32_t>(std::ceil(((x + r) - t.header.xll) / dx));
    const auto rowFrom = static_cast<std::int32_t>(((y - r) - t.header.yll) / dx);
    const auto rowTo = static_cast<std::int32_t>(std::ceil(((y + r) - t.header.yll) / dx));
    PlainSum sum;
    if (rowFrom <= 0 || rowTo > t.header.nrows || columnFrom <= 0 || columnTo > t.header.ncols) {
        return sum;
    }
    for (std::int32_t row = rowFrom; row <= rowTo; ++row) {
        for (std::int32_t column = columnFrom; column <= columnTo; ++column) {
            const double cellX = t.header.xll + static_cast<double>(static_cast<float>(column)) * dx;
            const double cellY = t.header.yll + static_cast<double>(static_cast<float>(row)) * dx;
            if (INSIDE_POLYGON_8(cellX, cellY, ringX, ringY, 14, xmin, ringEnd, 1) &&
                t.cells(row, column) != t.header.null) {
                sum.take(t.cells(row, column));
            }
        }
    }
    return sum;
}

TEST(SampleSection, AgreesWithThePlainForms)
{
    std::mt19937 random(7);
    int updated = 0;
    int kept = 0;
    for (int run = 0; run < 400; ++run) {
        constexpr std::array<float, 4> kSizes = {1, 2.5F, 0.3F, 10};
        const float size = kSizes[random() % 4];
        Terrain t =
            terrain(20 + static_cast<std::int32_t>(random() % 20), 15 + static_cast<std::int32_t>(random() % 30), size,
                    run % 3 == 0 ? 512345.678 : -20, run % 3 == 0 ? 6123456.5 : 3);
        for (float& cell : t.cells.cells()) {
            cell = random() % 5 == 0 ? kNullCell : static_cast<float>(random() % 10000) * 0.013F;
        }
        std::vector<double> xy;
        for (std::size_t i = 0; i < 2 + random() % 6; ++i) {
            xy.push_back(t.header.xll + static_cast<double>(size) * static_cast<double>(random() % 4600) / 100);
            xy.push_back(t.header.yll + static_cast<double>(size) * static_cast<double>(random() % 4200) / 100);
        }
        const std::string method = std::array<const char*, 3>{"Max", "Min", "average"}[random() % 3];
        const float distance = size * static_cast<float>(random() % 200) / 10;
        for (const std::string buffer : {"Perp", "Buffer"}) {
            const network::NbcSection section = sectionAt(xy, buffer, method, distance);
            const std::vector<float> got = elevations(t, section);
            for (std::size_t i = 0; i < got.size(); ++i) {
                const PlainSum plain = buffer == "Perp" ? plainPerp(t, section, i) : plainBuffer(t, section, i);
                EXPECT_EQ(got[i], plain.count > 0 ? plain.value(method) : kNullCell) << buffer << run << " " << i;
                ++(plain.count > 0 ? updated : kept);
            }
        }
    }
    EXPECT_GT(updated, 1000);
    EXPECT_GT(kept, 100);
}

TEST(SampleSection, OfOddCellsAgreesWithThePlainForms)
{
    std::mt19937 random(13);
    int updated = 0;
    for (int run = 0; run < 400; ++run) {
        const float null = kOddNulls[static_cast<std::size_t>(run) % std::size(kOddNulls)];
        Terrain t = terrain(25, 30, 2.5F, -20.25, 1000.5);
        t.header.null = null;
        std::ranges::copy(oddCells(t.cells.cells().size(), null, static_cast<std::uint32_t>(random())),
                          t.cells.cells().begin());
        std::vector<double> xy;
        for (std::size_t i = 0; i < 5; ++i) {
            xy.push_back(t.header.xll + static_cast<double>(random() % 7500) / 100);
            xy.push_back(t.header.yll + static_cast<double>(random() % 6250) / 100);
        }
        const std::string method = std::array<const char*, 3>{"Max", "Min", "average"}[random() % 3];
        const float distance = static_cast<float>(random() % 100) / 10;
        for (const std::string buffer : {"Perp", "Buffer"}) {
            const network::NbcSection section = sectionAt(xy, buffer, method, distance);
            const std::vector<float> got = elevations(t, section);
            for (std::size_t i = 0; i < got.size(); ++i) {
                const PlainSum plain = buffer == "Perp" ? plainPerp(t, section, i) : plainBuffer(t, section, i);
                const float wanted = plain.count > 0 ? plain.value(method) : kNullCell;
                ASSERT_EQ(bitsOfValue(got[i]), bitsOfValue(wanted))
                    << got[i] << " in place of " << wanted << ' ' << buffer << run << ' ' << i;
                updated += plain.count > 0 ? 1 : 0;
            }
        }
    }
    EXPECT_GT(updated, 2000);
}

TEST(SampleSection, APointTakesAnOddCellBitByBit)
{
    for (const float null : kOddNulls) {
        Terrain t = terrain(30, 40);
        t.header.null = null;
        std::ranges::copy(oddCells(t.cells.cells().size(), null, 14), t.cells.cells().begin());
        for (const network::PointValue target : {network::PointValue::elevation, network::PointValue::material}) {
            std::vector<double> xy;
            std::vector<float> wanted;
            for (std::int32_t row = 1; row <= 30; ++row) {
                for (std::int32_t column = 1; column <= 40; ++column) {
                    xy.push_back(column + 0.3);
                    xy.push_back(row - 0.4);
                    wanted.push_back(t.cells(row, column) != null ? t.cells(row, column) : kNullCell);
                }
            }
            network::NbcSection section = sectionAt(xy);
            network::sampleSection(t.header, t.cells, target, section);
            EXPECT_EQ(bitsOf(target == network::PointValue::material ? section.pointMaterial : section.pointZ),
                      bitsOf(wanted));
        }
    }
}

// --- By hand ---------------------------------------------------------------------------------------------------------

TEST(SampleSection, APointTakesTheCellThatItsPlaceRoundsTo)
{
    const Terrain t = numbered(5, 5);
    EXPECT_EQ(elevations(t, sectionAt({2.49, 3.5, 2.5, 3.49, 0.5, 5.49, 0.49, 3, 5.5, 3, 3, 0.49, 3, 5.5})),
              (std::vector<float>{42, 33, 51, kNullCell, kNullCell, kNullCell, kNullCell}));
}

TEST(SampleSection, BothAxesAreDividedByTheOneCellSize)
{
    Terrain t = terrain(3, 3, 2, 100, 200);
    t.cells(2, 3) = 7;
    EXPECT_EQ(elevations(t, sectionAt({106, 204})), std::vector<float>{7});
}

TEST(SampleSection, ANullCellKeepsTheEarlierValue)
{
    Terrain t = numbered(3, 3);
    t.cells(2, 2) = kNullCell;
    network::NbcSection section = sectionAt({2, 2, 3, 2});
    section.pointZ = {1.5F, 2.5F};
    EXPECT_EQ(network::sampleSection(t.header, t.cells, network::PointValue::elevation, section), 1);
    EXPECT_EQ(section.pointZ, (std::vector<float>{1.5F, 23}));
}

TEST(SampleSection, PerpWithoutADistanceLooksAtThreePlaces)
{
    // Along a line to the east: rows 2, 3 and 4 of each column.
    const Terrain t = numbered(5, 5);
    EXPECT_EQ(elevations(t, sectionAt({2, 3, 4, 3}, "Perp", "")), (std::vector<float>{32, 34}));
    EXPECT_EQ(elevations(t, sectionAt({2, 3, 4, 3}, "a perpendicular", "MINIMUM")), (std::vector<float>{22, 24}));
    EXPECT_EQ(elevations(t, sectionAt({2, 3, 4, 3}, "PERP", "max")), (std::vector<float>{42, 44}));
}

TEST(SampleSection, PerpBetweenTheEndsTakesTheMeanDirection)
{
    // To the east, then to the north: at the bend 45 degrees, so square to it 135. The cells a step of 0.707 off along that
    // are (4, 2) and (2, 4); on the line (3, 3).
    const Terrain t = numbered(5, 5);
    EXPECT_EQ(elevations(t, sectionAt({1, 3, 3, 3, 3, 5}, "Perp", "Max"))[1], 42.0F);
    EXPECT_EQ(elevations(t, sectionAt({1, 3, 3, 3, 3, 5}, "Perp", "Min"))[1], 24.0F);
    // A mean of directions turns round where they lie to both sides of west: 170 and -170 give 0, not 180. Square to it
    // is 90: (2, 3), (3, 3) and (4, 3).
    EXPECT_EQ(elevations(t, sectionAt({4, 2.8, 3, 3, 2, 2.8}, "Perp", "Max"))[1], 43.0F);
}

TEST(SampleSection, BufferTakesCornersInTheRing)
{
    // Around (3, 3) within 1.25: the corners of the cells (3, 2), (2, 3), (3, 3), (4, 3) and (3, 4). On the axes the ring is
    // 1.25 wide, but halfway between two vertices at 30 degrees to each other only 1.25 x cos 15 = 1.207 in any direction;
    // the next corners are 1.414 off.
    Terrain t = numbered(6, 6);
    EXPECT_EQ(elevations(t, sectionAt({3, 3}, "Buffer", "Max", 2.5F)), std::vector<float>{43});
    EXPECT_EQ(elevations(t, sectionAt({3, 3}, "buffer", "Min", 2.5F)), std::vector<float>{23});
    t.cells(4, 3) = kNullCell;
    EXPECT_EQ(elevations(t, sectionAt({3, 3}, "buffer", "mean", 2.5F)),
              std::vector<float>{(23.0F + 32.0F + 33.0F + 34.0F) / 4.0F});
}

TEST(SampleSection, BufferOverTheEdgeLeavesThePoint)
{
    // Columns from trunc(2.2 - 1.25) = 0.
    const Terrain t = numbered(6, 6);
    EXPECT_EQ(elevations(t, sectionAt({2.2, 3, 3, 3}, "Buffer", "Max", 2.5F)), (std::vector<float>{kNullCell, 43}));
}

TEST(SampleSection, MaterialsTakeThePointAlways)
{
    const Terrain t = numbered(6, 6);
    network::NbcSection section = sectionAt({3, 3, 4, 3}, "Perp", "Max", 4);
    EXPECT_EQ(network::sampleSection(t.header, t.cells, network::PointValue::material, section), 2);
    EXPECT_EQ(section.pointMaterial, (std::vector<float>{33, 34}));
    EXPECT_EQ(section.pointZ, (std::vector<float>{kNullCell, kNullCell}));
}

TEST(SampleSection, FarPlacesAndWidthsCostNothing)
{
    const Terrain t = numbered(6, 6);
    EXPECT_EQ(elevations(t, sectionAt({1e300, 3, -1e300, 3}, "", "")), (std::vector<float>{kNullCell, kNullCell}));
    EXPECT_EQ(elevations(t, sectionAt({3, 3, 4, 3}, "Perp", "Max", 1e30F)), (std::vector<float>{63, 64}));
    EXPECT_EQ(elevations(t, sectionAt({3, 3, 4, 3}, "Buffer", "Max", 1e30F)),
              (std::vector<float>{kNullCell, kNullCell}));
}

TEST(SamplePoints, PassesOverSectionsThatAreNotExtracted)
{
    const Terrain t = numbered(6, 6);
    network::NbcSections sections;
    sections.all = {sectionAt({3, 3}, "Perp"), sectionAt({3, 3})};
    sections.all[1].extract = false;
    network::samplePoints(t.header, t.cells, network::PointValue::elevation, sections);
    EXPECT_EQ(sections.all[0].pointZ, std::vector<float>{33});
    EXPECT_EQ(sections.all[1].pointZ, std::vector<float>{kNullCell});
}

} // namespace
} // namespace gridforge::test
