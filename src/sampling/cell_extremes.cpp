#include "sampling/cell_extremes.h"

#include "plane/geometry.h"
#include "sampling/cell_tiles.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <limits>

namespace gridforge::sampling {

namespace {

bool isInWindow(const CellWindow& window, std::int32_t row, std::int32_t column)
{
    return row >= window.firstRow && row <= window.lastRow && column >= window.firstColumn &&
           column <= window.lastColumn;
}

} // namespace

// Not-a-number is neither lower nor higher than anything.
ExtremeSearch::Range ExtremeSearch::rangeOf(std::span<const float> cells, float null)
{
    constexpr std::size_t kLanes = 16;
    std::array<float, kLanes> low;
    std::array<float, kLanes> high;
    low.fill(kNoValue);
    high.fill(-kNoValue);
    const auto take = [&](float cell, std::size_t lane) {
        const float forLow = cell == null ? kNoValue : cell;
        const float forHigh = cell == null ? -kNoValue : cell;
        low[lane] = forLow < low[lane] ? forLow : low[lane];
        high[lane] = forHigh > high[lane] ? forHigh : high[lane];
    };
    std::size_t i = 0;
    for (; i + kLanes <= cells.size(); i += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            take(cells[i + lane], lane);
        }
    }
    for (; i < cells.size(); ++i) {
        take(cells[i], 0);
    }
    return {*std::min_element(low.begin(), low.end()), *std::max_element(high.begin(), high.end())};
}

bool ExtremeSearch::mayHold(const Range& cells, const Range& found)
{
    return cells.low < found.low || cells.high > found.high;
}

ExtremeSearch::Tile& ExtremeSearch::tile(std::int32_t tileRow, std::int32_t tileColumn)
{
    return tiles_[static_cast<std::size_t>(tileRow - tilesOfPart_.firstRow) * tilesAcross() +
                  static_cast<std::size_t>(tileColumn - tilesOfPart_.firstColumn)];
}

std::span<ExtremeSearch::Range> ExtremeSearch::rowPieces(std::int32_t row, const TileWindow& tiles)
{
    const std::size_t start = static_cast<std::size_t>(row - cells_.window().firstRow) * tilesAcross() +
                              static_cast<std::size_t>(tiles.firstColumn - tilesOfPart_.firstColumn);
    return std::span(pieces_).subspan(start, static_cast<std::size_t>(tiles.lastColumn - tiles.firstColumn) + 1);
}

void ExtremeSearch::lookThrough(std::int32_t tileRow, std::int32_t tileColumn)
{
    Tile& tile = this->tile(tileRow, tileColumn);
    const TileWindow alone = {tileRow, tileRow, tileColumn, tileColumn};
    const CellWindow window = windowOfTile(tileRow, tileColumn, cells_.window());
    const std::int32_t first = window.firstColumn;
    const std::int32_t columns = window.lastColumn - first + 1;
    const auto columnOf = [&](std::int32_t row, float value) {
        const auto cells = cells_.row(row, first, columns);
        return first + static_cast<std::int32_t>(std::ranges::find(cells, value) - cells.begin());
    };
    for (std::int32_t row = window.firstRow; row <= window.lastRow; ++row) {
        const Range piece = rangeOf(cells_.row(row, first, columns), header_.null);
        rowPieces(row, alone).front() = piece;
        if (piece.low < tile.range.low) {
            tile.range.low = piece.low;
            tile.lowRow = row;
        }
        if (piece.high > tile.range.high) {
            tile.range.high = piece.high;
            tile.highRow = row;
        }
    }
    tile.lowColumn = tile.lowRow > 0 ? columnOf(tile.lowRow, tile.range.low) : 0;
    tile.highColumn = tile.highRow > 0 ? columnOf(tile.highRow, tile.range.high) : 0;
    tile.known = true;
}

void ExtremeSearch::know(const TileWindow& tiles)
{
    if (tiles_.empty()) {
        const CellWindow& part = cells_.window();
        tiles_.resize(tilesAcross() * (static_cast<std::size_t>(tilesOfPart_.lastRow - tilesOfPart_.firstRow) + 1));
        pieces_.resize(tilesAcross() * (static_cast<std::size_t>(part.lastRow - part.firstRow) + 1));
    }
    for (std::int32_t tileRow = tiles.firstRow; tileRow <= tiles.lastRow; ++tileRow) {
        for (std::int32_t tileColumn = tiles.firstColumn; tileColumn <= tiles.lastColumn; ++tileColumn) {
            if (!tile(tileRow, tileColumn).known) {
                lookThrough(tileRow, tileColumn);
            }
        }
    }
}

// A range that the extremes of the search reach: the cells that make the extremes of tiles give it where they lie inside.
// It stops just short of them, so that the first cell of such a value is found and not this one.
ExtremeSearch::Range ExtremeSearch::rangeToBeat(const CellSearch& search, const TileWindow& tiles)
{
    const auto isInside = [&](std::int32_t row, std::int32_t column) {
        return isInWindow(search.window, row, column) &&
               insideSearchPolygon(search.polygon, cornerX(header_, column), cornerY(header_, row));
    };
    constexpr float kFarthest = std::numeric_limits<float>::infinity();
    Range range;
    for (std::int32_t tileRow = tiles.firstRow; tileRow <= tiles.lastRow; ++tileRow) {
        for (std::int32_t tileColumn = tiles.firstColumn; tileColumn <= tiles.lastColumn; ++tileColumn) {
            const Tile& tile = this->tile(tileRow, tileColumn);
            if (tile.range.low < range.low && isInside(tile.lowRow, tile.lowColumn)) {
                range.low = std::nextafter(tile.range.low, kFarthest);
            }
            if (tile.range.high > range.high && isInside(tile.highRow, tile.highColumn)) {
                range.high = std::nextafter(tile.range.high, -kFarthest);
            }
        }
    }
    return range;
}

bool ExtremeSearch::tilesMayHold(std::int32_t tileRow, const TileWindow& tiles, const Range& found)
{
    bool any = false;
    for (std::int32_t tileColumn = tiles.firstColumn; tileColumn <= tiles.lastColumn; ++tileColumn) {
        any |= mayHold(tile(tileRow, tileColumn).range, found);
    }
    return any;
}

void ExtremeSearch::searchCells(std::int32_t row, std::int32_t first, std::int32_t last, Extremes& found) const
{
    std::int32_t column = first;
    for (const float cell : cells_.row(row, first, last - first + 1)) {
        if (cell != header_.null) {
            if (cell < found.range.low) {
                found.range.low = cell;
                found.lowRow = row;
                found.lowColumn = column;
            }
            if (cell > found.range.high) {
                found.range.high = cell;
                found.highRow = row;
                found.highColumn = column;
            }
        }
        ++column;
    }
}

void ExtremeSearch::searchRow(const CellSearch& search, std::int32_t row, const TileWindow& tiles, Extremes& found)
{
    const std::span<const Range> pieces = rowPieces(row, tiles);
    if (std::ranges::none_of(pieces, [&](const Range& piece) { return mayHold(piece, found.range); })) {
        return;
    }
    walkRow(header_, row, CellPlace::northEastCorner, walk_);
    for (const RowRun& run : walk_.runs) {
        const std::int32_t last = search.window.firstColumn + static_cast<std::int32_t>(run.to) - 1;
        for (std::int32_t first = search.window.firstColumn + static_cast<std::int32_t>(run.from); first <= last;) {
            const std::int32_t tileColumn = tileOf(first);
            const std::int32_t lastOfPiece = std::min(firstOfTile(tileColumn) + (kTileSide - 1), last);
            if (mayHold(pieces[static_cast<std::size_t>(tileColumn - tiles.firstColumn)], found.range)) {
                searchCells(row, first, lastOfPiece, found);
            }
            first = lastOfPiece + 1;
        }
    }
}

FoundCell ExtremeSearch::foundCell(const CellSearch& search, std::int32_t row, std::int32_t column) const
{
    const double x = cornerX(header_, column);
    const double y = cornerY(header_, row);
    return {cells_(row, column), DISTANCE_8(search.x, search.y, x, y), x, y};
}

FoundExtremes ExtremeSearch::find(const CellSearch& search)
{
    const CellWindow& window = search.window;
    assert(isWithinGrid(window, header_));
    FoundExtremes result;
    if (window.empty()) {
        return result;
    }
    const TileWindow tiles = tilesOf(window);
    know(tiles);
    prepareWalk(search.polygon, walk_);
    placeColumns(header_, window, CellPlace::northEastCorner, walk_);
    Extremes found;
    found.range = rangeToBeat(search, tiles);
    for (std::int32_t tileRow = tiles.firstRow; tileRow <= tiles.lastRow; ++tileRow) {
        if (!tilesMayHold(tileRow, tiles, found.range)) {
            continue;
        }
        const std::int32_t lastRow = std::min(firstOfTile(tileRow) + (kTileSide - 1), window.lastRow);
        for (std::int32_t row = std::max(firstOfTile(tileRow), window.firstRow); row <= lastRow; ++row) {
            searchRow(search, row, tiles, found);
        }
    }
    if (found.lowRow > 0) {
        result.lowest = foundCell(search, found.lowRow, found.lowColumn);
    }
    if (found.highRow > 0) {
        result.highest = foundCell(search, found.highRow, found.highColumn);
    }
    return result;
}

} // namespace gridforge::sampling
