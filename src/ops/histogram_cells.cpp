#include "ops/histogram_cells.h"

#include "core/limit_table.h"
#include "core/map_cells.h"
#include "ops/histogram_cells_avx2.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>

namespace gridforge::ops {

namespace {

// As limits never fall, a bin holds what passes the limit before and not its own: one vectorised count a limit. What is not a
// number passes them all.
void countByLimits(std::span<const float> cells, float null, std::span<const float> limits,
                   std::span<std::int64_t> counts)
{
    std::int64_t past = countCells(cells, [null](float cell) { return cell != null; });
    for (std::size_t i = 0; i < limits.size(); ++i) {
        const std::int64_t pastThis =
            countCells(cells, [null, limit = limits[i]](float cell) { return (cell != null) & !(cell <= limit); });
        counts[i] += past - pastThis;
        past = pastThis;
    }
    counts.back() += past;
}

// Cells that follow each other often fall in one bin, and would wait for each other there: so they take turns among four rows
// of bins. Null cells fall in bins of their own past the others, without a branch.
void countByTable(std::span<const float> cells, float null, const LimitTable& table, std::span<std::int64_t> counts)
{
    constexpr std::size_t kRows = 4;
    constexpr std::size_t kNullBins = 256;
    std::array<std::array<std::uint32_t, 2 * kNullBins>, kRows> rows{};
    table.forEach(cells, [&](std::size_t i, std::size_t bin) {
        ++rows[i % kRows][bin + kNullBins * static_cast<std::size_t>(cells[i] == null)];
    });
    for (const auto& row : rows) {
        for (std::size_t bin = 0; bin < counts.size(); ++bin) {
            counts[bin] += row[bin];
        }
    }
}

} // namespace

void countBins(std::span<const float> cells, float null, std::span<const float> limits, std::span<std::int64_t> counts)
{
    assert(counts.size() == limits.size() + 1);
    constexpr std::size_t kByLimits = 4096; // stays in the cache from one limit to the next
    constexpr std::size_t kByTable = std::size_t{1} << 24;
    const std::size_t done = countLanes(cells, null, limits, counts);
    if (done == cells.size()) {
        return;
    }
    const LimitTable table(limits);
    const std::size_t stretch = table.mostInAPlace() > 0 ? kByTable : kByLimits;
    for (std::size_t from = done; from < cells.size(); from += stretch) {
        const std::span<const float> some = cells.subspan(from, std::min(stretch, cells.size() - from));
        if (table.mostInAPlace() > 0) {
            countByTable(some, null, table, counts);
        } else {
            countByLimits(some, null, limits, counts);
        }
    }
}

} // namespace gridforge::ops
