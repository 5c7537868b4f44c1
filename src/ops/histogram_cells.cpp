#include "ops/histogram_cells.h"

#include "core/map_cells.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace gridforge::ops {

void countBins(std::span<const float> cells, float null, std::span<const float> limits, std::span<std::int64_t> counts)
{
    assert(counts.size() == limits.size() + 1);
    constexpr std::size_t kStretch = 4096; // stays in the cache from one limit to the next
    for (std::size_t from = 0; from < cells.size(); from += kStretch) {
        const std::span<const float> stretch = cells.subspan(from, std::min(kStretch, cells.size() - from));
        // As limits never fall, a bin holds what passes the limit before and not its own: one vectorised count a limit. What
        // is not a number passes them all.
        std::int64_t past = countCells(stretch, [null](float cell) { return cell != null; });
        for (std::size_t i = 0; i < limits.size(); ++i) {
            const std::int64_t pastThis = countCells(
                stretch, [null, limit = limits[i]](float cell) { return (cell != null) & !(cell <= limit); });
            counts[i] += past - pastThis;
            past = pastThis;
        }
        counts.back() += past;
    }
}

} // namespace gridforge::ops
