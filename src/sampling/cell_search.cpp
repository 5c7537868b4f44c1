#include "sampling/cell_search.h"

#include "base/geometry.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <span>

namespace gridforge {

CellSearch searchAround(const GridHeader& header, double x, double y, float diameter)
{
    return {x, y, searchPolygon(x, y, diameter), searchWindow(header, x, y, diameter)};
}

namespace {

// Cells that are looked over for nulls in one go.
constexpr std::int64_t kPiece = 64;

float cornerDistance(const CellSearch& search, double cornerX, double cornerY)
{
    return DISTANCE_8(search.x, search.y, cornerX, cornerY);
}

// The first index from `first` to `last` whose place is not below `target`, `last` + 1 where there is none. Places do not
// fall.
template <typename Place>
std::int32_t firstNotBelow(std::int32_t first, std::int32_t last, double target, Place place)
{
    std::int64_t low = first;
    std::int64_t high = std::int64_t{last} + 1;
    while (low < high) {
        const std::int64_t middle = (low + high) / 2;
        if (place(static_cast<std::int32_t>(middle)) < target) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return static_cast<std::int32_t>(low);
}

bool allNull(std::span<const float> cells, float null)
{
    int values = 0;
    for (const float cell : cells) {
        values |= static_cast<int>(cell != null);
    }
    return values == 0;
}

// The best cell so far. Rows and columns come in the order of their distance, so equally near cells are told apart by
// their place.
class NearestSearch {
public:
    NearestSearch(const CellSearch& search, const GridHeader& header, const Grid& cells)
        : search_(search), header_(header), cells_(cells)
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
        rowCells_ = cells_.row(row);
        const CellWindow& window = search_.window;
        for (std::int64_t from = split; from <= window.lastColumn && !isBeyond(distanceOf(from)); from += kPiece) {
            const std::int64_t to = std::min<std::int64_t>(window.lastColumn, from + (kPiece - 1));
            if (hasValues(from, to)) {
                for (std::int64_t column = from; column <= to; ++column) {
                    consider(static_cast<std::int32_t>(column));
                }
            }
        }
        for (std::int64_t from = std::int64_t{split} - 1; from >= window.firstColumn && !isBeyond(distanceOf(from));
             from -= kPiece) {
            const std::int64_t to = std::max<std::int64_t>(window.firstColumn, from - (kPiece - 1));
            if (hasValues(to, from)) {
                for (std::int64_t column = from; column >= to; --column) {
                    consider(static_cast<std::int32_t>(column));
                }
            }
        }
    }

    std::optional<FoundCell> result() const { return found_ ? std::optional(best_) : std::nullopt; }

private:
    float distanceOf(std::int64_t column) const
    {
        return cornerDistance(search_, cornerX(header_, static_cast<std::int32_t>(column)), y_);
    }

    bool hasValues(std::int64_t first, std::int64_t last) const
    {
        return !allNull(
            rowCells_.subspan(static_cast<std::size_t>(first - 1), static_cast<std::size_t>(last - first + 1)),
            header_.null);
    }

    void consider(std::int32_t column)
    {
        const float value = rowCells_[static_cast<std::size_t>(column - 1)];
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
    const Grid& cells_;
    FoundCell best_{0, kNoValue, 0, 0};
    std::int32_t bestRow_ = 0;
    std::int32_t bestColumn_ = 0;
    bool found_ = false;
    std::int32_t row_ = 0; // of the row being searched
    double y_ = 0;
    std::span<const float> rowCells_;
};

} // namespace

std::optional<FoundCell> nearestCell(const CellSearch& search, const GridHeader& header, const Grid& cells)
{
    const CellWindow& window = search.window;
    assert(isWithinGrid(window, header));
    if (window.firstRow > window.lastRow || window.firstColumn > window.lastColumn) {
        return std::nullopt;
    }
    const std::int32_t split = firstNotBelow(window.firstColumn, window.lastColumn, search.x,
                                             [&](std::int32_t c) { return cornerX(header, c); });
    std::int32_t north =
        firstNotBelow(window.firstRow, window.lastRow, search.y, [&](std::int32_t r) { return cornerY(header, r); });
    std::int32_t south = north - 1;

    // No cell of a row is nearer than the row: single-precision distances keep the order of their parts.
    const auto rowDistance = [&](std::int32_t row) { return cornerDistance(search, search.x, cornerY(header, row)); };
    NearestSearch nearest(search, header, cells);
    while (north <= window.lastRow || south >= window.firstRow) {
        const bool goNorth =
            south < window.firstRow || (north <= window.lastRow && rowDistance(north) < rowDistance(south));
        const std::int32_t row = goNorth ? north++ : south--;
        if (nearest.isBeyond(rowDistance(row))) {
            break;
        }
        nearest.searchRow(row, split);
    }
    return nearest.result();
}

} // namespace gridforge
