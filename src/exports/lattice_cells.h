// The cells of a lattice that a region or a segment covers, in grid axes: u along the columns and v along the rows, cell n
// from (n - 1) x size to n x size. Only outside callers use them.
#pragma once

#include "plane/cell_window.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace gridforge::exports {

struct LatticeCell {
    std::int32_t row = 0; // from 1, in the south
    std::int32_t column = 0;

    bool operator==(const LatticeCell&) const = default;
};

// The cell that holds a place. Below the axes cells are numbered from 0 down.
LatticeCell latticeCell(float u, float v, float size);

// Marks the cells of the window that a region covers on the middle line of their row: flags[i] becomes 1 or 0, row by row
// from the south. The region has the layout of INSIDE_POLYGON. A ring that enters and leaves within one cell does not
// mark that cell. `flags` has the window's cells. Returns the count of marked cells; nothing if the rings end before
// the vertices and the window is not empty.
std::optional<std::int64_t> grid_inside_polygon(std::span<const float> u, std::span<const float> v, std::int32_t np,
                                                std::span<const std::int32_t> ir, std::int32_t nr, float size,
                                                const CellWindow& window, std::span<std::uint8_t> flags);

enum class GridlineEnd {
    done,
    noPlace,   // a coordinate is not finite
    pastLimit, // the segment passes through more than `limit` cells; `cells` holds the first of them
};

// Appends to `cells` those that the segment from point 1 to point 2 passes through, in its order; through a corner it
// steps across.
[[nodiscard]] GridlineEnd gridline(float u1, float v1, float u2, float v2, float size, std::int32_t limit,
                                   std::vector<LatticeCell>& cells);

} // namespace gridforge::exports
