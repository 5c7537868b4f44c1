#include "remap/extent_flags.h"

#include "core/computed.h"
#include "core/rounding.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>
#include <vector>

namespace gridforge::remap {

namespace {

// By how many columns a wet cell reaches out, for each difference in rows it reaches over.
std::vector<std::int32_t> columnReach(float dx, float buffer, std::int32_t nrows, std::int32_t ncols)
{
    const std::int64_t radius = static_cast<std::int64_t>(truncateToInt(static_cast<double>(buffer / dx))) + 1;
    const auto rowReach = static_cast<std::int32_t>(std::min<std::int64_t>(radius, nrows - 1));
    auto reach = static_cast<std::int32_t>(std::min<std::int64_t>(radius, ncols - 1));

    std::vector<std::int32_t> reaches;
    for (std::int32_t rows = 0; rows <= rowReach; ++rows) {
        const auto rowsApart = static_cast<float>(rows);
        const auto tooFar = [&](std::int32_t columns) {
            const auto columnsApart = static_cast<float>(columns);
            return !(dx * std::sqrt(columnsApart * columnsApart + rowsApart * rowsApart) <= buffer);
        };
        while (reach >= 0 && tooFar(reach)) {
            --reach;
        }
        if (reach < 0) {
            break;
        }
        reaches.push_back(reach);
    }
    return reaches;
}

// One sweep over the rows, northwards or southwards. A column's last wet cell that the sweep has passed covers a
// stretch of the row, so the flags of a row are the union of one stretch a column: work on n cells is n, whatever the
// buffer.
void sweepReach(const CellFlags& wetFlags, const std::vector<std::int32_t>& reaches, bool northwards,
                CellFlags& extentFlags)
{
    const std::int32_t nrows = wetFlags.nrows();
    const std::int32_t ncols = wetFlags.ncols();
    const auto columns = static_cast<std::size_t>(ncols);
    const auto beyond = static_cast<std::int32_t>(reaches.size()); // rows apart that reach nothing any more
    std::vector<std::int32_t> rowsSinceWet(columns, beyond);
    std::vector<std::int32_t> steps(columns + 1);

    for (std::int32_t step = 1; step <= nrows; ++step) {
        const std::int32_t row = northwards ? step : nrows + 1 - step;
        const auto wet = wetFlags.row(row);
        std::ranges::fill(steps, 0);
        for (std::size_t c = 0; c < columns; ++c) {
            rowsSinceWet[c] = wet[c] != 0 ? 0 : std::min(rowsSinceWet[c] + 1, beyond);
            if (rowsSinceWet[c] < beyond) {
                const auto reach = static_cast<std::size_t>(reaches[static_cast<std::size_t>(rowsSinceWet[c])]);
                ++steps[c < reach ? 0 : c - reach];
                --steps[std::min(columns, c + reach + 1)];
            }
        }
        std::int32_t covering = 0;
        const auto flags = extentFlags.row(row);
        for (std::size_t c = 0; c < columns; ++c) {
            covering += steps[c];
            flags[c] = static_cast<std::uint8_t>(flags[c] | static_cast<std::uint8_t>(covering > 0));
        }
    }
}

} // namespace

void flagValues(std::span<const float> values, float null, std::span<std::uint8_t> flags)
{
    assert(values.size() == flags.size());
    const float threshold = null + kAboveNull;
    for (std::size_t i = 0; i < values.size(); ++i) {
        flags[i] = static_cast<std::uint8_t>(values[i] > threshold);
    }
}

void flagWetAndAddFreeboard(std::span<float> levels, float null, float freeboard, std::span<std::uint8_t> wetFlags)
{
    flagValues(levels, null, wetFlags);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (wetFlags[i] != 0) {
            levels[i] = stored(levels[i] + freeboard);
        }
    }
}

ExtentCounts bufferExtent(const CellFlags& wetFlags, float dx, float buffer, CellFlags& extentFlags)
{
    const auto wet = wetFlags.cells();
    const auto flags = extentFlags.cells();
    std::ranges::copy(wet, flags.begin());

    const std::vector<std::int32_t> reaches = columnReach(dx, buffer, wetFlags.nrows(), wetFlags.ncols());
    if (!reaches.empty()) {
        sweepReach(wetFlags, reaches, true, extentFlags);
        sweepReach(wetFlags, reaches, false, extentFlags);
    }

    ExtentCounts counts;
    counts.wet = std::ranges::count(wet, std::uint8_t{1});
    counts.buffered = std::ranges::count(flags, std::uint8_t{1}) - counts.wet;
    return counts;
}

} // namespace gridforge::remap
