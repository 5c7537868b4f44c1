#include "damages/calculation.h"

#include "core/per_worker.h"
#include "core/rounding.h"
#include "damages/curves.h"
#include "grid/look.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/threads.h"
#include "run/cells_ahead.h"
#include "run/load.h"
#include "run/windows_ahead.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <optional>
#include <utility>

namespace gridforge::damages {

namespace {

constexpr float kLowestAEP = -9999.0F; // what the search for the largest starts from
constexpr float kTaken = -1.0F;        // marks a grid as taken
constexpr float kLeastMaximum = -998.0F;
constexpr float kNoDepth = -99.0F;

// The place of the largest AEP of the grids that are below the mark of those taken; their count if none is above the lowest.
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
    return place;
}

} // namespace

// The rule that it follows: the largest AEP is searched anew for each place, and a grid taken gets -1. So what is not
// above -1 never has its turn once a grid was taken: in its place the first grid with the mark is taken once more, with
// the mark as its AEP. On purpose: an AEP is never negative.
std::optional<std::vector<DmgRes>> sortByFrequency(std::span<const DmgRes> listed)
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
        if (marked == listed.end()) {
            return std::nullopt;
        }
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

CellWindow pointWindow(const DmgBuilding& building, const GridHeader& header)
{
    const std::int32_t column = roundToInt((building.x[0] - header.xll) / header.cellsize8);
    const std::int32_t row = roundToInt((building.y[0] - header.yll) / header.cellsize8);
    return {row, row, column, column};
}

CellWindow buildingWindow(const DmgBuilding& building, const GridHeader& header)
{
    const auto cell = [&header](double coordinate, double origin, double margin) {
        return truncateToInt(std::trunc((coordinate - origin) / header.cellsize8) + margin);
    };
    CellWindow window;
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

InsideCells cellsInside(const DmgBuilding& building, const CellWindow& window, const GridHeader& header,
                        const CellPart& cells, InsideWalk& walk)
{
    prepare(building, walk.region);
    InsideCells inside = {};
    forEachInsideRun(header, withinGrid(window, header), CellPlace::northEastCorner, walk,
                     [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                         addRun(cells.row(row, first, count), header.null, inside);
                     });
    return inside;
}

float maximumLevel(const InsideCells& cells, float null)
{
    return cells.maximum > kLeastMaximum ? cells.maximum : null;
}

float averageLevel(const InsideCells& cells, float null)
{
    return cells.count == 0 ? null : cells.sum / static_cast<float>(cells.count);
}

// --- The calculation -------------------------------------------------------------------------------------------------

namespace {

// The cells of the grid that give the level of a building: the cell that holds a point, all cells around a polygon.
// None where it begins outside of the grid.
std::optional<CellWindow> windowInGrid(const DmgBuilding& building, const GridHeader& header)
{
    const CellWindow window =
        building.kind == BuildingKind::point ? pointWindow(building, header) : buildingWindow(building, header);
    if (!isWithin(window.firstRow, header.nrows) || !isWithin(window.firstColumn, header.ncols)) {
        return std::nullopt;
    }
    return withinGrid(window, header);
}

// What those cells hold: the value of a point, or what counts for a polygon.
struct FoundCells {
    float value = 0;
    InsideCells inside = {};
};

FoundCells findCells(const DmgBuilding& building, const CellWindow& window, const GridHeader& header,
                     const CellPart& cells, InsideWalk& walk)
{
    if (building.kind == BuildingKind::point) {
        return {cells(window.firstRow, window.firstColumn), {}};
    }
    return {0, cellsInside(building, window, header, cells, walk)};
}

// By building; empty where the grid is to be read whole.
std::vector<FoundCells> findAhead(const std::string& name, std::span<const DmgBuilding> buildings)
{
    const std::optional<grid::GridLook> look = grid::lookAtGrid(name);
    if (!look) {
        run::countWay(run::Way::oddInput);
        return {};
    }
    std::vector<run::ObjectWindow> windows;
    for (std::size_t i = 0; i < buildings.size(); ++i) {
        const auto window = windowInGrid(buildings[i], look->header);
        if (window && window->firstRow <= window->lastRow && window->firstColumn <= window->lastColumn) {
            windows.push_back({i, *window});
        }
    }
    PerWorker<InsideWalk> walks(threadCount());
    std::vector<FoundCells> found(buildings.size());
    const bool ahead =
        run::windowsAhead(*look, std::move(windows),
                          [&](const CellPart& cells, std::span<const run::ObjectWindow> part, std::size_t worker) {
                              for (const auto& [object, window] : part) {
                                  found[object] =
                                      findCells(buildings[object], window, look->header, cells, walks[worker]);
                              }
                          });
    return ahead ? found : std::vector<FoundCells>();
}

// The levels of the buildings, one after the other.
class LevelFinder {
public:
    LevelFinder(const std::string& name, std::span<const DmgBuilding> buildings, RegionLevel method)
        : buildings_(buildings), method_(method), ahead_(findAhead(name, buildings))
    {
        const run::LoadSteps steps{.opening = "Loading grid data...",
                                   .purpose = "storing input grid...",
                                   .reading = "Reading data...",
                                   .done = "   Done.",
                                   .ahead = !ahead_.empty()};
        header_ = run::loadGrid(name, steps, cells_).header;
    }

    float null() const { return header_.null; }

    // Of building `i`, from 0. Only the low corner of a polygon is tested, and then the level stays as it is, on
    // purpose: a polygon that sticks out of the grid in the south or west has the level of the building before it.
    void find(std::size_t i, float& level)
    {
        const DmgBuilding& building = buildings_[i];
        const bool isPoint = building.kind == BuildingKind::point;
        if (!isPoint && building.kind != BuildingKind::polygon) {
            fail("ERROR - Should not be here dmg_calc_res[a]");
        }
        const auto window = windowInGrid(building, header_);
        if (window) {
            const FoundCells found = ahead_.empty() ? findCells(building, *window, header_, cells_, walk_) : ahead_[i];
            level = isPoint ? found.value : levelOf(found.inside);
        } else if (isPoint) {
            say("WARNING - Building is outside grid area.");
            level = null();
        } else {
            say("WARNING - Polygon partially or fully outside of results grid.");
            pauseForEnter(); // in batch too
        }
    }

private:
    float levelOf(const InsideCells& cells) const
    {
        switch (method_) {
        case RegionLevel::maximum: return maximumLevel(cells, null());
        case RegionLevel::average: return averageLevel(cells, null());
        }
        fail("ERROR - Unexpected region inspection method [dmg_calc_res]");
    }

    std::span<const DmgBuilding> buildings_;
    RegionLevel method_;
    std::vector<FoundCells> ahead_;
    GridHeader header_;
    Grid cells_;
    InsideWalk walk_;
};

} // namespace

void dmg_calc_res(std::span<DmgBuilding> buildings, std::span<const DmgCurve> curves, std::span<const DmgRes> results,
                  std::int32_t iResult, RegionLevel method, float& level)
{
    const auto result = static_cast<std::size_t>(iResult - 1);
    LevelFinder levels(results[result].file, buildings, method);
    for (std::size_t i = 0; i < buildings.size(); ++i) {
        DmgBuilding& building = buildings[i];
        levels.find(i, level);
        const float depth = level == levels.null() ? kNoDepth : level - building.FFL;
        const DmgCurve& curve = curves[static_cast<std::size_t>(building.curve - 1)];
        if (isPastCurve(curve.depth, depth)) {
            say("Depth exceeds highest value in curve.");
        }
        building.damage[result] = dmg_curve_lookup(curve.depth, curve.damage, depth) * building.multiplier;
    }
    say("Deallocating grid memory.");
}

} // namespace gridforge::damages
