#include "damages/calculation.h"

#include "core/numbers.h"
#include "damages/curves.h"
#include "host/console.h"
#include "host/ends.h"
#include "run/load.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>

namespace gridforge::damages {

namespace {

constexpr float kLowestAEP = -9999.0F; // what the search for the largest starts from
constexpr float kTaken = -1.0F;        // marks a grid as taken
constexpr float kLeastMaximum = -998.0F;
constexpr float kNoDepth = -99.0F;

// The place of the largest AEP of the grids that are below the mark of those taken.
std::size_t largestBelowMark(std::span<const DmgRes> listed)
{
    std::size_t place = listed.size();
    float best = kLowestAEP;
    for (std::size_t j = 0; j < listed.size(); ++j) {
        if (listed[j].AEP > best) {
            best = listed[j].AEP;
            place = j;
        }
    }
    if (place == listed.size()) {
        fail("ERROR - No results grid has an AEP above -9999.");
    }
    return place;
}

} // namespace

// The rule that it follows: the largest AEP is searched anew for each place, and a grid taken gets -1. So what is not above -1
// never has its turn once a grid was taken: in its place the first grid with the mark is taken once more, with the mark
// as its AEP. Deliberate; an AEP is not negative.
std::vector<DmgRes> sortByFrequency(std::span<const DmgRes> listed)
{
    const auto isAboveMark = [](const DmgRes& result) { return result.AEP > kTaken; };
    std::vector<DmgRes> sorted;
    std::ranges::copy_if(listed, std::back_inserter(sorted), isAboveMark);
    std::ranges::stable_sort(sorted, std::greater<>(), &DmgRes::AEP);
    if (sorted.size() == listed.size()) {
        return sorted;
    }

    auto marked = std::ranges::find_if(listed, [](const DmgRes& result) { return result.AEP >= kTaken; });
    if (marked == listed.end()) {
        marked = listed.begin() + static_cast<std::ptrdiff_t>(largestBelowMark(listed));
        sorted.push_back(*marked);
    }
    sorted.resize(listed.size(), {marked->file, kTaken});
    return sorted;
}

// --- Levels ----------------------------------------------------------------------------------------------------------

namespace {

bool isWithin(std::int32_t index, std::int32_t count)
{
    return index > 0 && index <= count;
}

} // namespace

std::vector<double> columnPlaces(const GridHeader& header)
{
    std::vector<double> x;
    x.reserve(static_cast<std::size_t>(header.ncols));
    for (std::int32_t column = 1; column <= header.ncols; ++column) {
        x.push_back(run::cornerX(header, column));
    }
    return x;
}

bool pointLevel(const DmgBuilding& building, const SampledGrid& grid, float& level)
{
    const GridHeader& header = grid.header;
    const std::int32_t column = roundToInt((building.x[0] - header.xll) / header.cellsize8);
    const std::int32_t row = roundToInt((building.y[0] - header.yll) / header.cellsize8);
    if (!isWithin(row, header.nrows) || !isWithin(column, header.ncols)) {
        say("WARNING - Building is outside grid area.");
        return false;
    }
    level = grid.cells(row, column);
    return true;
}

run::CellWindow buildingWindow(const DmgBuilding& building, const GridHeader& header)
{
    const auto cell = [&header](double coordinate, double origin, double margin) {
        return truncateToInt(std::trunc((coordinate - origin) / header.cellsize8) + margin);
    };
    run::CellWindow window;
    window.firstRow = cell(building.extent.ymin, header.yll, -1);
    window.lastRow = cell(building.extent.ymax, header.yll, 1);
    window.firstColumn = cell(building.extent.xmin, header.xll, -1);
    window.lastColumn = cell(building.extent.xmax, header.xll, 1);
    return window;
}

namespace {

void prepare(const DmgBuilding& building, PreparedRegion& region)
{
    const auto vertices = static_cast<std::size_t>(building.vertices);
    prepareRing(std::span(building.x).first(vertices), std::span(building.y).first(vertices), building.extent.xmin,
                region);
}

void addRun(std::span<const float> values, float null, InsideCells& cells)
{
    for (const float value : values) {
        if (value != null) {
            cells.maximum = value > cells.maximum ? value : cells.maximum;
            cells.sum += value;
            ++cells.count;
        }
    }
}

} // namespace

InsideCells cellsInside(const DmgBuilding& building, const run::CellWindow& window, const SampledGrid& grid,
                        PolygonTest& test)
{
    const GridHeader& header = grid.header;
    const std::int32_t lastRow = std::min(window.lastRow, header.nrows);
    const std::int32_t lastColumn = std::min(window.lastColumn, header.ncols);
    InsideCells cells;
    if (lastColumn < window.firstColumn) {
        return cells;
    }
    const auto first = static_cast<std::size_t>(window.firstColumn - 1);
    const std::size_t columns = static_cast<std::size_t>(lastColumn) - first;
    const std::span<const double> x = std::span(grid.columnX).subspan(first, columns);
    prepare(building, test.region);
    for (std::int32_t row = window.firstRow; row <= lastRow; ++row) {
        insideRegionRuns(test.region, run::cornerY(header, row), x, test.runs);
        const std::span<const float> values = grid.cells.row(row).subspan(first, columns);
        for (const RowRun& run : test.runs) {
            addRun(values.subspan(run.from, run.size()), header.null, cells);
        }
    }
    return cells;
}

// --- The calculation -------------------------------------------------------------------------------------------------

namespace {

float levelOf(const InsideCells& cells, std::int32_t method, float null)
{
    switch (method) {
    case kInspectMax: return cells.maximum > kLeastMaximum ? cells.maximum : null;
    case kInspectAvg: return cells.count == 0 ? null : cells.sum / static_cast<float>(cells.count);
    default: fail("ERROR - Unexpected region inspection method [dmg_calc_res]");
    }
}

class LevelFinder {
public:
    LevelFinder(const SampledGrid& grid, std::int32_t method) : grid_(grid), method_(method) {}

    void find(const DmgBuilding& building, float& level)
    {
        if (building.type == kPointBuilding) {
            if (!pointLevel(building, grid_, level)) {
                level = grid_.header.null;
            }
        } else if (building.type == kPolygonBuilding) {
            findPolygon(building, level);
        } else {
            fail("ERROR - Should not be here dmg_calc_res[a]");
        }
    }

private:
    // Only the low corner is tested, and then the level stays as it is, on purpose: a polygon that sticks out of the
    // grid in the south or west has the level of the building before it.
    void findPolygon(const DmgBuilding& building, float& level)
    {
        const GridHeader& header = grid_.header;
        const run::CellWindow window = buildingWindow(building, header);
        if (!isWithin(window.firstRow, header.nrows) || !isWithin(window.firstColumn, header.ncols)) {
            say("WARNING - Polygon partially or fully outside of results grid.");
            pauseForEnter(); // in batch too
            return;
        }
        level = levelOf(cellsInside(building, window, grid_, test_), method_, header.null);
    }

    const SampledGrid& grid_;
    std::int32_t method_;
    PolygonTest test_;
};

void load(const std::string& name, SampledGrid& grid)
{
    const run::LoadSteps steps{.opening = "Loading grid data...",
                               .purpose = "storing input grid...",
                               .reading = "Reading data...",
                               .done = "   Done."};
    grid.header = run::loadGrid(name, steps, grid.cells).header;
    grid.columnX = columnPlaces(grid.header);
}

} // namespace

void dmg_calc_res(std::span<DmgBuilding> buildings, std::span<const DmgCurve> curves, std::span<const DmgRes> results,
                  std::int32_t iResult, std::int32_t method, float& level)
{
    const auto result = static_cast<std::size_t>(iResult - 1);
    SampledGrid grid;
    load(results[result].file, grid);
    LevelFinder levels(grid, method);
    for (DmgBuilding& building : buildings) {
        levels.find(building, level);
        const float depth = level == grid.header.null ? kNoDepth : level - building.FFL;
        const DmgCurve& curve = curves[static_cast<std::size_t>(building.curve - 1)];
        building.damage[result] = dmg_curve_lookup(curve.depth, curve.damage, depth) * building.multiplier;
    }
    say("Deallocating grid memory.");
}

} // namespace gridforge::damages
