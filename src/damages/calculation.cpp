#include "damages/calculation.h"

#include "core/per_worker.h"
#include "damages/building_cells.h"
#include "damages/curves.h"
#include "grid/look.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/threads.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "run/cells_ahead.h"
#include "run/load.h"
#include "run/windows_ahead.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::damages {

namespace {

constexpr float kNoDepth = -99.0F;

// --- What a grid holds at buildings ----------------------------------------------------------------------------------

bool isWithin(std::int32_t index, std::int32_t count)
{
    return index > 0 && index <= count;
}

// The cells of the grid that give the level of a building: the cell that holds a point, all cells around a polygon.
// None where it begins outside of the grid.
std::optional<CellWindow> windowInGrid(const DmgBuilding& building, const GridHeader& header)
{
    const CellWindow window = building.kind == BuildingKind::point
                                  ? pointWindow(building.outline.x[0], building.outline.y[0], header)
                                  : buildingWindow(building.outline.box, header);
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
    return {0, cellsInside(building.outline, window, header, cells, walk)};
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

// A results grid and what it holds at the buildings, asked for one after the other.
class CellFinder {
public:
    CellFinder(const std::string& name, std::span<const DmgBuilding> buildings)
        : buildings_(buildings), ahead_(findAhead(name, buildings))
    {
        const run::LoadSteps steps{.opening = "Loading grid data...",
                                   .purpose = "storing input grid...",
                                   .reading = "Reading data...",
                                   .done = "   Done.",
                                   .ahead = !ahead_.empty()};
        header_ = run::loadGrid(name, steps, cells_).header;
    }

    float null() const { return header_.null; }

    // At building `i`, from 0; nothing where it begins outside of the grid.
    std::optional<FoundCells> find(std::size_t i)
    {
        const auto window = windowInGrid(buildings_[i], header_);
        if (!window) {
            return std::nullopt;
        }
        return ahead_.empty() ? findCells(buildings_[i], *window, header_, cells_, walk_) : ahead_[i];
    }

private:
    std::span<const DmgBuilding> buildings_;
    std::vector<FoundCells> ahead_;
    GridHeader header_;
    Grid cells_;
    InsideWalk walk_;
};

// --- The calculation -------------------------------------------------------------------------------------------------

float levelOf(const InsideCells& cells, RegionLevel method, float null)
{
    switch (method) {
    case RegionLevel::maximum: return maximumLevel(cells, null);
    case RegionLevel::average: return averageLevel(cells, null);
    }
    fail("ERROR - Unexpected region inspection method [dmg_calc_res]");
}

// Only the low corner of a polygon is tested, and then the level stays as it is, on purpose: a polygon that sticks out of
// the grid in the south or west has the level of the building before it.
void takeLevel(BuildingKind kind, const std::optional<FoundCells>& found, RegionLevel method, float null, float& level)
{
    const bool isPoint = kind == BuildingKind::point;
    if (found) {
        level = isPoint ? found->value : levelOf(found->inside, method, null);
    } else if (isPoint) {
        say("WARNING - Building is outside grid area.");
        level = null;
    } else {
        say("WARNING - Polygon partially or fully outside of results grid.");
        pauseForEnter(); // in batch too
    }
}

void requireKnownKind(BuildingKind kind)
{
    if (kind != BuildingKind::point && kind != BuildingKind::polygon) {
        fail("ERROR - Should not be here dmg_calc_res[a]");
    }
}

} // namespace

void dmg_calc_res(std::span<DmgBuilding> buildings, std::span<const DmgCurve> curves, std::span<const DmgRes> results,
                  std::int32_t iResult, RegionLevel method, float& level)
{
    const auto result = static_cast<std::size_t>(iResult - 1);
    CellFinder cells(results[result].file, buildings);
    for (std::size_t i = 0; i < buildings.size(); ++i) {
        DmgBuilding& building = buildings[i];
        requireKnownKind(building.kind);
        takeLevel(building.kind, cells.find(i), method, cells.null(), level);
        const float depth = level == cells.null() ? kNoDepth : level - building.FFL;
        const DmgCurve& curve = curves[static_cast<std::size_t>(building.curve - 1)];
        if (isPastCurve(curve.depth, depth)) {
            say("Depth exceeds highest value in curve.");
        }
        building.damage[result] = dmg_curve_lookup(curve.depth, curve.damage, depth) * building.multiplier;
    }
    say("Deallocating grid memory.");
}

} // namespace gridforge::damages
