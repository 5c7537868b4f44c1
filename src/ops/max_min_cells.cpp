#include "ops/max_min_cells.h"

#include "core/map_cells.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace gridforge::ops {

namespace {

// `enters` decides between the new and the kept value.
template <typename Enters>
void takeWhere(std::span<const float> current, float source, std::span<float> extreme, std::span<float> sources,
               Enters enters)
{
    if (sources.empty()) {
        updateCells(extreme, current, [enters](float kept, float cell) { return enters(cell, kept) ? cell : kept; });
        return;
    }
    assert(current.size() == extreme.size() && current.size() == sources.size());
    const float* const cells = current.data();
    float* const kept = extreme.data();
    float* const from = sources.data();
    // All is loaded before it is known whether it is wanted: only then does the loop vectorise.
    for (std::size_t i = 0; i < current.size(); ++i) {
        const float cell = cells[i];
        const float before = kept[i];
        const float sourceBefore = from[i];
        const bool better = enters(cell, before);
        kept[i] = better ? cell : before;
        from[i] = better ? source : sourceBefore;
    }
}

} // namespace

void takeMaximum(std::span<const float> current, float null, float source, std::span<float> extreme,
                 std::span<float> sources)
{
    takeWhere(current, source, extreme, sources,
              [null](float cell, float kept) { return (cell != null) & (cell > kept); });
}

void takeMinimum(std::span<const float> current, float null, float source, std::span<float> extreme,
                 std::span<float> sources)
{
    takeWhere(current, source, extreme, sources,
              [null](float cell, float kept) { return (cell != null) & ((kept == null) | (cell < kept)); });
}

void takeExtremes(const Taken& taken, Extreme wanted, std::span<float> extreme, std::span<float> sources)
{
    const auto take = wanted == Extreme::maximum ? takeMaximum : takeMinimum;
    take(taken.cells, taken.null, taken.source, extreme, sources);
}

// Fills what is kept with the null and takes the first grid, in pieces that stay in the cache: two passes over large arrays
// cost more than one.
void startExtremes(const Taken& first, Extreme wanted, float null, std::span<float> extreme, std::span<float> sources)
{
    constexpr std::size_t kPiece = 8192;
    for (std::size_t start = 0; start < extreme.size(); start += kPiece) {
        const std::size_t count = std::min(kPiece, extreme.size() - start);
        const auto kept = extreme.subspan(start, count);
        const auto from = sources.empty() ? sources : sources.subspan(start, count);
        std::ranges::fill(kept, null);
        std::ranges::fill(from, null);
        takeExtremes({first.cells.subspan(start, count), first.null, first.source}, wanted, kept, from);
    }
}

} // namespace gridforge::ops
