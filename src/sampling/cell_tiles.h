// Square tiles of the cells of a grid, what is known of them serving one search after another.
#pragma once

#include "plane/cell_array.h"
#include "plane/cell_part.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::sampling {

inline constexpr std::int32_t kTileSide = 64; // rows and columns

// The row or column of tiles, from 0, of a row or column of cells.
inline std::int32_t tileOf(std::int32_t rowOrColumn)
{
    return (rowOrColumn - 1) / kTileSide;
}

inline std::int32_t firstOfTile(std::int32_t tile)
{
    return tile * kTileSide + 1;
}

// The rows and columns of tiles, from 0, that a window of cells touches.
inline CellWindow tilesOf(const CellWindow& window)
{
    return {tileOf(window.firstRow), tileOf(window.lastRow), tileOf(window.firstColumn), tileOf(window.lastColumn)};
}

// The cells of a tile that lie in the window.
inline CellWindow windowOfTile(std::int32_t tileRow, std::int32_t tileColumn, const CellWindow& window)
{
    return {std::max(firstOfTile(tileRow), window.firstRow),
            std::min(firstOfTile(tileRow) + (kTileSide - 1), window.lastRow),
            std::max(firstOfTile(tileColumn), window.firstColumn),
            std::min(firstOfTile(tileColumn) + (kTileSide - 1), window.lastColumn)};
}

// Which tiles hold nothing but null. A tile is looked through when it is asked for the first time.
class EmptyTiles {
public:
    // The header and the cells must stay. Of tiles that are not all in the part, what is in it counts.
    EmptyTiles(const GridHeader& header, const CellPart& cells) : header_(header), cells_(cells) {}

    bool isEmpty(std::int32_t tileRow, std::int32_t tileColumn);

private:
    enum class State : std::uint8_t { unknown, empty, filled };

    bool holdsNulls(std::int32_t tileRow, std::int32_t tileColumn) const;

    const GridHeader& header_;
    CellPart cells_;
    std::vector<State> states_; // none before the first question
};

// True where all of the cells are null.
bool allNull(std::span<const float> cells, float null);

} // namespace gridforge::sampling
