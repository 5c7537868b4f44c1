#include "sampling/cell_tiles.h"

#include <algorithm>

namespace gridforge::sampling {

bool allNull(std::span<const float> cells, float null)
{
    int values = 0;
    for (const float cell : cells) {
        values |= static_cast<int>(cell != null);
    }
    return values == 0;
}

bool EmptyTiles::holdsNulls(std::int32_t tileRow, std::int32_t tileColumn) const
{
    const std::int32_t first = firstOfTile(tileColumn);
    const std::int32_t last = std::min(first + (kTileSide - 1), header_.ncols);
    const std::int32_t lastRow = std::min(firstOfTile(tileRow) + (kTileSide - 1), header_.nrows);
    for (std::int32_t row = firstOfTile(tileRow); row <= lastRow; ++row) {
        const auto piece =
            cells_.row(row).subspan(static_cast<std::size_t>(first - 1), static_cast<std::size_t>(last - first + 1));
        if (!allNull(piece, header_.null)) {
            return false;
        }
    }
    return true;
}

bool EmptyTiles::isEmpty(std::int32_t tileRow, std::int32_t tileColumn)
{
    const auto across = static_cast<std::size_t>(tileOf(header_.ncols)) + 1;
    if (states_.empty()) {
        states_.resize(across * (static_cast<std::size_t>(tileOf(header_.nrows)) + 1), State::unknown);
    }
    State& state = states_[static_cast<std::size_t>(tileRow) * across + static_cast<std::size_t>(tileColumn)];
    if (state == State::unknown) {
        state = holdsNulls(tileRow, tileColumn) ? State::empty : State::filled;
    }
    return state == State::empty;
}

} // namespace gridforge::sampling
