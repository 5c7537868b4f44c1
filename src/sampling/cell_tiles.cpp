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
    const CellWindow tile = windowOfTile(tileRow, tileColumn, cells_.window());
    for (std::int32_t row = tile.firstRow; row <= tile.lastRow; ++row) {
        if (!allNull(cells_.row(row, tile.firstColumn, tile.lastColumn - tile.firstColumn + 1), header_.null)) {
            return false;
        }
    }
    return true;
}

bool EmptyTiles::isEmpty(std::int32_t tileRow, std::int32_t tileColumn)
{
    const CellWindow tiles = tilesOf(cells_.window());
    const auto across = static_cast<std::size_t>(tiles.lastColumn - tiles.firstColumn) + 1;
    if (states_.empty()) {
        states_.resize(across * (static_cast<std::size_t>(tiles.lastRow - tiles.firstRow) + 1), State::unknown);
    }
    State& state = states_[static_cast<std::size_t>(tileRow - tiles.firstRow) * across +
                           static_cast<std::size_t>(tileColumn - tiles.firstColumn)];
    if (state == State::unknown) {
        state = holdsNulls(tileRow, tileColumn) ? State::empty : State::filled;
    }
    return state == State::empty;
}

} // namespace gridforge::sampling
