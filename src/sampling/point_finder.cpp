#include "sampling/point_finder.h"

#include "grid/reader.h"
#include "host/ends.h"
#include "run/cells_ahead.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>
#include <utility>

namespace gridforge::sampling {

namespace {

bool isSame(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// None where the circle touches the edge of the grid, or holds no cell.
std::optional<CellWindow> windowInGrid(const GridHeader& header, const gis::PointPlace& place, float diameter)
{
    const CellWindow window = searchWindow(header, place.x, place.y, diameter);
    if (!isWithinGrid(window, header) || window.firstRow > window.lastRow || window.firstColumn > window.lastColumn) {
        return std::nullopt;
    }
    return window;
}

std::optional<CellSearch> searchInGrid(const GridHeader& header, const gis::PointPlace& place, float diameter)
{
    return windowInGrid(header, place, diameter) ? std::optional(searchAround(header, place.x, place.y, diameter))
                                                 : std::nullopt;
}

} // namespace

PointFinder::PointFinder(const std::string& layer, const std::string& grid, const PointCircles& circles)
    : circles_(circles), look_(grid::lookAtGrid(grid))
{
    auto places = look_ ? gis::lookAtPoints(layer) : std::nullopt;
    if (!places) {
        run::countWay(run::Way::oddInput);
        return;
    }
    places_ = *std::move(places);
    findAhead();
}

std::optional<CellWindow> PointFinder::windowAround(const gis::PointPlace& place) const
{
    const GridHeader& header = look_->header;
    const auto nearest = windowInGrid(header, place, circles_.nearest);
    const auto extremes = circles_.extremes ? windowInGrid(header, place, *circles_.extremes) : std::nullopt;
    return nearest && extremes ? joined(*nearest, *extremes) : nearest ? nearest : extremes;
}

PointFinder::Found PointFinder::findIn(const gis::PointPlace& place, const CellPart& cells, EmptyTiles& tiles,
                                       ExtremeSearch& extremes) const
{
    Found found;
    const GridHeader& header = look_->header;
    if (const auto search = searchInGrid(header, place, circles_.nearest)) {
        found.nearest = nearestCell(*search, header, cells, tiles);
    }
    if (const auto search = circles_.extremes ? searchInGrid(header, place, *circles_.extremes) : std::nullopt) {
        found.extremes = extremes.find(*search);
    }
    return found;
}

void PointFinder::findAhead()
{
    std::vector<run::ObjectWindow> windows;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        if (const auto window = windowAround(places_[i])) {
            windows.push_back({i, *window});
        }
    }
    found_.resize(places_.size());
    ahead_ = run::windowsAhead(*look_, std::move(windows),
                               [&](const CellPart& cells, std::span<const run::ObjectWindow> part, std::size_t) {
                                   EmptyTiles tiles(look_->header, cells);
                                   ExtremeSearch extremes(look_->header, cells);
                                   for (const run::ObjectWindow& window : part) {
                                       found_[window.object] = findIn(places_[window.object], cells, tiles, extremes);
                                   }
                               });
}

void PointFinder::load(const std::string& grid)
{
    terrain_ = loadTerrain(grid, ahead_);
    if (!ahead_) {
        searchWhole();
    }
}

void PointFinder::searchWhole()
{
    ahead_ = false;
    emptyTiles_.emplace(terrain_.header, terrain_.cells);
    extremes_.emplace(terrain_.header, terrain_.cells);
}

// The layer has another point than the look at it has found.
void PointFinder::readLate()
{
    if (!terrain_.cells.allocate(terrain_.header.nrows, terrain_.header.ncols)) {
        failMemory();
    }
    grid::readPassedCells(*look_, terrain_.cells);
    searchWhole();
}

void PointFinder::goTo(double x, double y)
{
    at_ = {x, y};
    const std::size_t place = next_++;
    if (ahead_ && (place >= places_.size() || !isSame(places_[place].x, x) || !isSame(places_[place].y, y))) {
        readLate();
    }
}

std::optional<FoundCell> PointFinder::nearest()
{
    if (ahead_) {
        return found_[next_ - 1].nearest;
    }
    const auto search = searchInGrid(terrain_.header, at_, circles_.nearest);
    return search ? nearestCell(*search, terrain_.header, terrain_.cells, *emptyTiles_) : std::nullopt;
}

FoundExtremes PointFinder::extremes()
{
    if (ahead_) {
        return found_[next_ - 1].extremes;
    }
    const auto search = circles_.extremes ? searchInGrid(terrain_.header, at_, *circles_.extremes) : std::nullopt;
    return search ? extremes_->find(*search) : FoundExtremes();
}

} // namespace gridforge::sampling
