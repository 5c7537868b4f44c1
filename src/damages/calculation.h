// Damages of all buildings on results grids, one grid in memory at a time.
#pragma once

#include "damages/records.h"
#include "grid/grid.h"
#include "plane/cell_part.h"
#include "plane/cell_window.h"
#include "plane/inside_runs.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gridforge::damages {

// The results grids from the most frequent event to the rarest; of equal probabilities the first listed goes first.
// Nothing where some are listed and none is above -9999.
std::optional<std::vector<DmgRes>> sortByFrequency(std::span<const DmgRes> listed);

// --- Levels of buildings on one grid ---------------------------------------------------------------------------------

// The row and column at a point building, as the nearest whole number of cell sizes from the corner of the grid, which is
// the north-east corner of the cell. They may lie outside the grid.
CellWindow pointWindow(const DmgBuilding& building, const GridHeader& header);

// Rows and columns about a polygon's extent, with a cell of margin on each side; it may reach over the grid.
CellWindow buildingWindow(const DmgBuilding& building, const GridHeader& header);

// The cells that count for a polygon. Levels of -999 or less never come into the maximum.
struct InsideCells {
    float maximum = -999.0F;
    float sum = 0;
    std::int64_t count = 0;
};

// The level of a polygon on those cells; null where the maximum is not above -998, and where none count for the average.
float maximumLevel(const InsideCells& cells, float null);
float averageLevel(const InsideCells& cells, float null);

// Sums up the cells of the window, whose first row and column lie in the grid, that are inside the polygon and not null,
// rows from the south and each from the west. Beyond the grid there are none. A row costs its edges and the cells inside.
InsideCells cellsInside(const DmgBuilding& building, const CellWindow& window, const GridHeader& header,
                        const CellPart& cells, InsideWalk& walk);

// --- The calculation -------------------------------------------------------------------------------------------------

// Reads grid `iResult`, from 1, and fills that damage of every building. `level` goes from call to call, 0 at first: a
// polygon whose window begins outside of the grid leaves it, and so takes the level of the building before it.
void dmg_calc_res(std::span<DmgBuilding> buildings, std::span<const DmgCurve> curves, std::span<const DmgRes> results,
                  std::int32_t iResult, RegionLevel method, float& level);

} // namespace gridforge::damages
