// The search of the cells around a point for the nearest one with a value. A cell counts where its north-east corner lies
// inside the search polygon and it is not null.
#pragma once

#include "plane/cell_array.h"
#include "plane/cell_window.h"
#include "sampling/cell_tiles.h"
#include "sampling/search_polygon.h"

#include <cstdint>
#include <optional>

namespace gridforge::sampling {

// What a search starts from: distances and levels are below it, or it is not beaten.
inline constexpr float kNoValue = 99999.0F;

struct FoundCell {
    float value = 0;
    float distance = 0; // from the point to the corner
    double x = 0;       // the corner
    double y = 0;
};

// The square of the area searched around a point.
struct CellSearch {
    double x = 0;
    double y = 0;
    SearchPolygon polygon;
    CellWindow window;
};
CellSearch searchAround(const GridHeader& header, double x, double y, float diameter);

// The nearest cell, of equally near ones the first by rows from the south, each from the west. The window must lie within
// the grid, and in `cells`. Goes outwards from the point, so it costs what lies nearer than the cell found, and skips empty
// tiles of the grid.
std::optional<FoundCell> nearestCell(const CellSearch& search, const GridHeader& header, const CellPart& cells,
                                     EmptyTiles& tiles);

} // namespace gridforge::sampling
