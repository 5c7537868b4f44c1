#include "remap/nearest_cells.h"

#include "core/computed.h"
#include "core/map_cells.h"

#include <algorithm>
#include <cassert>

namespace gridforge::remap {

void takeNearestLevels(const CoarseLevels& coarse, const std::vector<NearestCell>& columns, const NearestCell& row,
                       std::span<float> levels)
{
    assert(levels.size() == columns.size());
    const float threshold = coarse.null + kAboveNull;
    for (std::size_t c = 0; c < levels.size(); ++c) {
        levels[c] = coarse.null;
        const NearestCell& column = columns[c];
        if (row.cell == 0 || column.cell == 0 || !isNearCell(column, row, coarse.columns.cellsize)) {
            continue;
        }
        const float level = coarse.levels(row.cell, column.cell);
        levels[c] = level > threshold ? level : coarse.null;
    }
}

void depthsOfLevels(std::span<const float> ground, std::span<const float> levels, float null, std::span<float> depths)
{
    mapCells(ground, levels, depths, [null](float bottom, float level) {
        const float depth = stored(level - bottom);
        return ((level != null) & (level >= bottom)) ? depth : null;
    });
}

void depthsOnGround(std::span<const float> ground, float groundNull, std::span<const float> levels, float null,
                    std::span<float> depths)
{
    depthsOfLevels(ground, levels, null, depths);
    const float threshold = groundNull + kGroundAboveNull;
    updateCells(depths, ground,
                [threshold, null](float depth, float bottom) { return bottom >= threshold ? depth : null; });
}

std::int64_t spreadLevels(const Grid& levels, const Grid& ground, float groundNull, float null, Grid& spread)
{
    const float threshold = groundNull + kGroundAboveNull;
    const std::int32_t nrows = levels.nrows();
    std::int64_t extra = 0;
    for (std::int32_t row = 1; row <= nrows; ++row) {
        // A neighbour off the terrain is the cell itself, which has no level.
        const auto here = levels.row(row);
        const auto south = levels.row(std::max(row - 1, 1));
        const auto north = levels.row(std::min(row + 1, nrows));
        const auto floor = ground.row(row);
        const auto out = spread.row(row);
        const std::size_t last = here.size() - 1;
        for (std::size_t c = 0; c <= last; ++c) {
            if (here[c] != null) {
                out[c] = here[c];
                continue;
            }
            float sum = 0;
            float count = 0;
            for (const float beside : {here[c == 0 ? c : c - 1], here[std::min(c + 1, last)], south[c], north[c]}) {
                if (beside != null) {
                    sum += beside;
                    count += 1;
                }
            }
            if (count == 0) {
                out[c] = null;
                continue;
            }
            const float mean = sum / count;
            if (mean >= floor[c] && floor[c] >= threshold) {
                out[c] = mean;
                ++extra;
            }
        }
    }
    return extra;
}

} // namespace gridforge::remap
