// The lowest and the highest cell around points, for many points of one grid.
#pragma once

#include "plane/cell_array.h"
#include "plane/cell_part.h"
#include "plane/inside_runs.h"
#include "sampling/cell_search.h"
#include "sampling/cell_tiles.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace gridforge::sampling {

struct FoundExtremes {
    std::optional<FoundCell> lowest;
    std::optional<FoundCell> highest;
};

// Remembers the extremes of tiles of cells. A tile is looked through when a search reaches it for the first time; later
// ones cost the tiles of their window and the rows that may hold something lower or higher than what the tiles show.
class ExtremeSearch {
public:
    // The header and the cells must stay.
    ExtremeSearch(const GridHeader& header, const CellPart& cells)
        : header_(header), cells_(cells), tilesOfPart_(tilesOf(cells.window()))
    {
    }

    // Among the cells that nearestCell considers: the first of the lowest and the first of the highest, row by row from
    // the south, each row from the west. Values of 99999 or more are ignored for the lowest, those of -99999 or less for
    // the highest. The window must lie within the grid, and in the cells.
    FoundExtremes find(const CellSearch& search);

private:
    struct Range {
        float low = kNoValue;
        float high = -kNoValue;
    };
    struct Tile {
        bool known = false;
        Range range;
        std::int32_t lowRow = 0;
        std::int32_t lowColumn = 0;
        std::int32_t highRow = 0;
        std::int32_t highColumn = 0;
    };
    using TileWindow = CellWindow; // of tiles, from 0
    // What is found so far: only cells beyond the range are of interest.
    struct Extremes {
        Range range;
        std::int32_t lowRow = 0; // 0: none
        std::int32_t lowColumn = 0;
        std::int32_t highRow = 0;
        std::int32_t highColumn = 0;
    };

    static Range rangeOf(std::span<const float> cells, float null);
    static bool mayHold(const Range& cells, const Range& found);
    Tile& tile(std::int32_t tileRow, std::int32_t tileColumn);
    std::size_t tilesAcross() const
    {
        return static_cast<std::size_t>(tilesOfPart_.lastColumn - tilesOfPart_.firstColumn) + 1;
    }
    std::span<Range> rowPieces(std::int32_t row, const TileWindow& tiles);
    void lookThrough(std::int32_t tileRow, std::int32_t tileColumn);
    void know(const TileWindow& tiles);
    Range rangeToBeat(const CellSearch& search, const TileWindow& tiles);
    bool tilesMayHold(std::int32_t tileRow, const TileWindow& tiles, const Range& found);
    void searchRow(const CellSearch& search, std::int32_t row, const TileWindow& tiles, Extremes& found);
    void searchCells(std::int32_t row, std::int32_t first, std::int32_t last, Extremes& found) const;
    FoundCell foundCell(const CellSearch& search, std::int32_t row, std::int32_t column) const;

    const GridHeader& header_;
    CellPart cells_;
    TileWindow tilesOfPart_;
    std::vector<Range> pieces_; // of each row, by its tile columns; none before the first search
    std::vector<Tile> tiles_;
    InsideWalk walk_;
};

} // namespace gridforge::sampling
