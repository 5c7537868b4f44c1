#include "sampling/cell_search.h"

#include "core/first_index.h"
#include "plane/geometry.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <span>

namespace gridforge::sampling {

CellSearch searchAround(const GridHeader& header, double x, double y, float diameter)
{
    return {x, y, searchPolygon(x, y, diameter), searchWindow(header, x, y, diameter)};
}

namespace {

float cornerDistance(const CellSearch& search, double cornerX, double cornerY)
{
    return DISTANCE_8(search.x, search.y, cornerX, cornerY);
}

// The first index from `first` to `last` whose place is not below `target`, `last` + 1 for none. Places do not
// fall.
template <typename Place>
std::int32_t firstNotBelow(std::int32_t first, std::int32_t last, double target, const Place& place)
{
    return static_cast<std::int32_t>(firstThat(first, last, [&](std::int32_t k) { return !(place(k) < target); }));
}

// The row of tiles that was asked for last.
struct TileRowMemory {
    std::int32_t tileRow = -1;
    bool empty = false;
};

// The best cell so far. Rows and columns come in the order of their distance, so equally near cells are told apart by
// their place.
class NearestSearch {
public:
    NearestSearch(const CellSearch& search, const GridHeader& header, const CellPart& cells, EmptyTiles& tiles)
        : search_(search), header_(header), cells_(cells), tiles_(tiles)
    {
    }

    // A cell at this distance cannot be the nearest.
    bool isBeyond(float distance) const { return distance > best_.distance; }

    // Goes over the row from the point to both sides, as far as cells there may be the nearest. `split` is the first
    // column that does not lie west of the point.
    void searchRow(std::int32_t row, std::int32_t split)
    {
        row_ = row;
        y_ = cornerY(header_, row);
        const CellWindow& window = search_.window;
        rowCells_ = cells_.row(row, window.firstColumn, window.lastColumn - window.firstColumn + 1);
        for (std::int32_t from = split; from <= window.lastColumn && !isBeyond(distanceOf(from));) {
            const std::int32_t to = std::min(window.lastColumn, firstOfTile(tileOf(from)) + (kTileSide - 1));
            if (hasValues(from, to)) {
                for (std::int32_t column = from; column <= to; ++column) {
                    consider(column);
                }
            }
            from = to + 1;
        }
        for (std::int32_t from = split - 1; from >= window.firstColumn && !isBeyond(distanceOf(from));) {
            const std::int32_t to = std::max(window.firstColumn, firstOfTile(tileOf(from)));
            if (hasValues(to, from)) {
                for (std::int32_t column = from; column >= to; --column) {
                    consider(column);
                }
            }
            from = to - 1;
        }
    }

    // No tile that the row crosses within the window holds a value.
    bool isEmptyRow(std::int32_t row, TileRowMemory& memory)
    {
        if (memory.tileRow != tileOf(row)) {
            memory.tileRow = tileOf(row);
            memory.empty = true;
            for (std::int32_t column = tileOf(search_.window.firstColumn);
                 memory.empty && column <= tileOf(search_.window.lastColumn); ++column) {
                memory.empty = tiles_.isEmpty(memory.tileRow, column);
            }
        }
        return memory.empty;
    }

    std::optional<FoundCell> result() const { return found_ ? std::optional(best_) : std::nullopt; }

private:
    float distanceOf(std::int32_t column) const { return cornerDistance(search_, cornerX(header_, column), y_); }

    // Of columns in one tile.
    bool hasValues(std::int32_t first, std::int32_t last) const
    {
        const auto piece = rowCells_.subspan(static_cast<std::size_t>(first - search_.window.firstColumn),
                                             static_cast<std::size_t>(last - first + 1));
        return !tiles_.isEmpty(tileOf(row_), tileOf(first)) && !allNull(piece, header_.null);
    }

    void consider(std::int32_t column)
    {
        const float value = rowCells_[static_cast<std::size_t>(column - search_.window.firstColumn)];
        if (value == header_.null) {
            return;
        }
        const double x = cornerX(header_, column);
        const float distance = cornerDistance(search_, x, y_);
        const bool earlier =
            found_ && distance == best_.distance && (row_ < bestRow_ || (row_ == bestRow_ && column < bestColumn_));
        if ((distance < best_.distance || earlier) && insideSearchPolygon(search_.polygon, x, y_)) {
            best_ = {value, distance, x, y_};
            bestRow_ = row_;
            bestColumn_ = column;
            found_ = true;
        }
    }

    const CellSearch& search_;
    const GridHeader& header_;
    const CellPart& cells_;
    EmptyTiles& tiles_;
    FoundCell best_{0, kNoValue, 0, 0};
    std::int32_t bestRow_ = 0;
    std::int32_t bestColumn_ = 0;
    bool found_ = false;
    std::int32_t row_ = 0; // of the row being searched
    double y_ = 0;
    std::span<const float> rowCells_; // of the window
};

} // namespace

std::optional<FoundCell> nearestCell(const CellSearch& search, const GridHeader& header, const CellPart& cells,
                                     EmptyTiles& tiles)
{
    const CellWindow& window = search.window;
    assert(isWithinGrid(window, header));
    if (window.empty()) {
        return std::nullopt;
    }
    const std::int32_t split = firstNotBelow(window.firstColumn, window.lastColumn, search.x,
                                             [&](std::int32_t c) { return cornerX(header, c); });
    std::int32_t north =
        firstNotBelow(window.firstRow, window.lastRow, search.y, [&](std::int32_t r) { return cornerY(header, r); });
    std::int32_t south = north - 1;

    // No cell of a row is nearer than the row: single-precision distances keep the order of their parts.
    const auto rowDistance = [&](std::int32_t row) { return cornerDistance(search, search.x, cornerY(header, row)); };
    NearestSearch nearest(search, header, cells, tiles);
    TileRowMemory northTiles;
    TileRowMemory southTiles;
    while (north <= window.lastRow || south >= window.firstRow) {
        const bool goNorth =
            south < window.firstRow || (north <= window.lastRow && rowDistance(north) < rowDistance(south));
        const std::int32_t row = goNorth ? north++ : south--;
        if (nearest.isBeyond(rowDistance(row))) {
            break;
        }
        if (!nearest.isEmptyRow(row, goNorth ? northTiles : southTiles)) {
            nearest.searchRow(row, split);
        }
    }
    return nearest.result();
}

} // namespace gridforge::sampling
