// Loops over rows with their progress on the console.
#pragma once

#include "host/console.h"
#include "host/threads.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace gridforge::remap {

inline constexpr std::int32_t kCoarseProgress = 10;
inline constexpr std::int32_t kFineProgress = 100;
inline constexpr std::int32_t kReportIterations = 100;

// Writes the heading, unless it is blank, and calls `work` with each row from south to north. Behind it stands the
// number of every `step`-th row.
template <typename Work>
void eachRow(std::string_view heading, std::int32_t nrows, std::int32_t step, Work&& work)
{
    if (!heading.empty()) {
        sayOpen(heading);
    }
    for (std::int32_t row = 1; row <= nrows; ++row) {
        work(row);
        if (row % step == 0) {
            progress(row);
        }
    }
    endLine();
}

// The same by all threads, several rows at a time; the numbers follow in their order. `work` is called with the row and
// the number of the worker, and says whether the rows go on: if not, no number of that row or a later one is written, and
// false returned.
template <typename Work>
bool eachRowAbreast(std::string_view heading, std::int32_t nrows, std::int32_t ncols, std::int32_t step, Work&& work)
{
    constexpr std::size_t kBandCells = std::size_t{1} << 18; // between two looks at the console
    const std::size_t rowsOfBand =
        std::max<std::size_t>(1, cellsPerPiece(kBandCells) / static_cast<std::size_t>(ncols));
    if (!heading.empty()) {
        sayOpen(heading);
    }
    std::vector<std::uint8_t> goesOn;
    const auto rows = static_cast<std::size_t>(nrows);
    for (std::size_t first = 1; first <= rows; first += rowsOfBand) {
        goesOn.assign(std::min(rowsOfBand, rows + 1 - first), 0);
        parallelFor(goesOn.size(), [&](std::size_t i, std::size_t worker) {
            goesOn[i] = static_cast<std::uint8_t>(work(static_cast<std::int32_t>(first + i), worker));
        });
        for (std::size_t i = 0; i < goesOn.size(); ++i) {
            const auto row = static_cast<std::int32_t>(first + i);
            if (goesOn[i] == 0) {
                return false;
            }
            if (row % step == 0) {
                progress(row);
            }
        }
    }
    endLine();
    return true;
}

} // namespace gridforge::remap
