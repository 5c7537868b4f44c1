#include "remap/extra_grid_cells.h"

#include "core/map_cells.h"

#include <algorithm>
#include <cassert>

namespace gridforge::remap {

void takeNearestCorners(const Grid& coarse, std::span<const QuadPlace> columns, const QuadPlace& row, float null,
                        std::span<float> values)
{
    assert(values.size() == columns.size());
    if (row.base == 0) {
        std::ranges::fill(values, null);
        return;
    }
    const auto coarseRow = coarse.row(row.nearest);
    for (std::size_t c = 0; c < values.size(); ++c) {
        const QuadPlace& column = columns[c];
        values[c] = column.base == 0 ? null : coarseRow[static_cast<std::size_t>(column.nearest - 1)];
    }
}

void cutToDepths(std::span<const float> depths, float null, std::span<float> values)
{
    updateCells(values, depths, [null](float value, float depth) { return depth >= 0 ? value : null; });
}

} // namespace gridforge::remap
