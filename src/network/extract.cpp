#include "network/extract.h"

#include "core/rounding.h"
#include "host/console.h"
#include "host/ends.h"
#include "plane/across_line.h"
#include "plane/cell_window.h"
#include "plane/geometry.h"
#include "plane/inside_runs.h"
#include "plane/line_points.h"
#include "plane/region_rows.h"
#include "run/load.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace gridforge::network {

namespace {

constexpr float kNoMinimum = 99999.0F;
constexpr float kNoMaximum = -99999.0F;

// --- What a set of cells gives ---------------------------------------------------------------------------------------

struct CellSummary {
    float minimum = kNoMinimum;
    float maximum = kNoMaximum;
    float sum = 0;
    std::int32_t count = 0;

    void take(float value)
    {
        ++count;
        maximum = value > maximum ? value : maximum;
        minimum = value < minimum ? value : minimum;
        sum += value;
    }
};

float valueOf(const CellSummary& cells, Extraction extraction)
{
    switch (extraction) {
    case Extraction::maximum: return cells.maximum;
    case Extraction::minimum: return cells.minimum;
    default: return cells.sum / static_cast<float>(cells.count);
    }
}

// --- Point -----------------------------------------------------------------------------------------------------------

// The cell of a point by rounding, as sample lines take it; null where the point is off the grid.
float cellAt(const GridHeader& header, const Grid& cells, double x, double y)
{
    const std::int32_t column = roundToInt((x - header.xll) / header.cellsize8);
    // The cell size of x for both: cells are square.
    const std::int32_t row = roundToInt((y - header.yll) / header.cellsize8);
    const bool inGrid = row >= 1 && row <= header.nrows && column >= 1 && column <= header.ncols;
    return inGrid ? cells(row, column) : header.null;
}

std::int64_t samplePointByPoint(const GridHeader& header, const Grid& cells, PointValue target, NbcSection& section)
{
    std::vector<float>& values = target == PointValue::material ? section.pointMaterial : section.pointZ;
    std::int64_t updated = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const float value = cellAt(header, cells, section.pointX[i], section.pointY[i]);
        if (value != header.null) {
            values[i] = value;
            ++updated;
        }
    }
    return updated;
}

// --- Perp ------------------------------------------------------------------------------------------------------------

// The direction in degrees from point i to the next, 0 for the only point.
float directionFrom(const NbcSection& section, std::size_t i)
{
    const std::size_t next = std::min(i + 1, section.pointX.size() - 1);
    return static_cast<float>(
        atan2d(section.pointY[next] - section.pointY[i], section.pointX[next] - section.pointX[i]));
}

// Square to the section at point i.
float perpendicularAt(const NbcSection& section, std::size_t i)
{
    const std::size_t last = section.pointX.size() - 1;
    float direction = 0;
    if (i == 0) {
        direction = directionFrom(section, 0);
    } else if (i == last) {
        direction = directionFrom(section, last - 1);
    } else {
        direction = (directionFrom(section, i - 1) + directionFrom(section, i)) * 0.5F;
    }
    return perpendicularAngle(direction);
}

CellSummary cellsAcross(const GridHeader& header, const Grid& cells, const NbcSection& section, std::size_t i)
{
    const AcrossLine line = acrossLine(header, section.pointX[i], section.pointY[i], perpendicularAt(section, i));
    const std::int32_t steps = samplesToSide(header, section.bufferDistance, kBothSides);
    CellSummary found;
    forEachSample(line, header, {-steps, steps}, [&](std::int32_t /*k*/, const SampleCell& cell) {
        const float value = cells(cell.row, cell.column);
        if (value != header.null) {
            found.take(value);
        }
    });
    return found;
}

// --- Buffer ----------------------------------------------------------------------------------------------------------

constexpr std::int32_t kRingSides = 12;

// The ring around a point, from due north clockwise, in the layout of the region test.
struct SampleRing {
    std::array<double, kRingSides + 2> x{};
    std::array<double, kRingSides + 2> y{};
};

SampleRing ringAround(double x, double y, float diameter)
{
    SampleRing ring;
    for (std::size_t m = 0; m < kRingSides; ++m) {
        const float angle = (static_cast<float>(m) / 12.0F) * 360.0F;
        const auto sine = static_cast<float>(sind(static_cast<double>(angle)));
        const auto cosine = static_cast<float>(cosd(static_cast<double>(angle)));
        ring.x[m] = x + static_cast<double>(diameter * sine * 0.5F);
        ring.y[m] = y + static_cast<double>(diameter * cosine * 0.5F);
    }
    for (std::size_t m = 0; m < 2; ++m) {
        ring.x[kRingSides + m] = ring.x[m];
        ring.y[kRingSides + m] = ring.y[m];
    }
    return ring;
}

void prepareRing(const SampleRing& ring, PreparedRegion& prepared)
{
    prepareRing(ring.x, ring.y, *std::ranges::min_element(ring.x), prepared);
}

// Goes through the cells around one point after another; its memory stays.
class BufferSampler {
public:
    BufferSampler(const GridHeader& header, const Grid& cells) : header_(header), cells_(cells) {}

    CellSummary cellsAround(double x, double y, float diameter)
    {
        CellSummary found;
        const CellWindow window = searchWindow(header_, x, y, diameter);
        if (!isWithinGrid(window, header_) || window.firstColumn > window.lastColumn) {
            return found;
        }
        prepareRing(ringAround(x, y, diameter), walk_.region);
        forEachInsideRun(header_, window, CellPlace::northEastCorner, walk_,
                         [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                             for (const float value : cellsOfRun(cells_, row, first, count)) {
                                 if (value != header_.null) {
                                     found.take(value);
                                 }
                             }
                         });
        return found;
    }

private:
    const GridHeader& header_;
    const Grid& cells_;
    InsideWalk walk_;
};

// --- Sections --------------------------------------------------------------------------------------------------------

// Gives each point the value of the cells that `cellsFor(i)` finds for it; without any it keeps its own.
template <typename CellsFor>
std::int64_t sampleBySets(NbcSection& section, CellsFor cellsFor)
{
    std::int64_t updated = 0;
    for (std::size_t i = 0; i < section.pointX.size(); ++i) {
        const CellSummary cells = cellsFor(i);
        if (cells.count > 0) {
            section.pointZ[i] = valueOf(cells, section.extraction);
            ++updated;
        }
    }
    return updated;
}

} // namespace

std::int64_t sampleSection(const GridHeader& header, const Grid& cells, PointValue target, NbcSection& section)
{
    if (target == PointValue::elevation && section.cells == SectionCells::across) {
        return sampleBySets(section, [&](std::size_t i) { return cellsAcross(header, cells, section, i); });
    }
    if (target == PointValue::elevation && section.cells == SectionCells::around) {
        BufferSampler sampler(header, cells);
        return sampleBySets(section, [&](std::size_t i) {
            return sampler.cellsAround(section.pointX[i], section.pointY[i], section.bufferDistance);
        });
    }
    return samplePointByPoint(header, cells, target, section);
}

void samplePoints(const GridHeader& header, const Grid& cells, PointValue target, NbcSections& sections)
{
    for (NbcSection& section : sections.all) {
        if (section.extract) {
            samplePointByPoint(header, cells, target, section);
        }
    }
}

GridHeader readSectionGrid(const std::string& name, std::string_view purpose, Grid& cells)
{
    return run::loadGrid(name, {.purpose = std::string(purpose), .done = "Finished reading grid."}, cells).header;
}

void nbc_read_grid(const std::string& gridName, NbcSections& sections, PointValue target)
{
    say(target == PointValue::material ? "Proccessing materials grid." : "Proccessing elevation grid.");
    say("Loading grid data...");
    Grid cells;
    const GridHeader header = readSectionGrid(gridName, "storing elevation grid...", cells);
    say("Extracting sections from grid...");
    std::int64_t updated = 0;
    for (NbcSection& section : sections.all) {
        if (!section.extract) {
            continue;
        }
        if (section.points() == 0) {
            fail("ERROR - Vertices have not been defined use \"Set XS dx\" before any read grid commands.");
        }
        updated += sampleSection(header, cells, target, section);
    }
    say("   Done");
    say("Updated ", updated, " vertices.");
    say("Deallocating grid memory...");
    cells.release();
    say("   Done");
    say("Finished processing grid.");
}

} // namespace gridforge::network
