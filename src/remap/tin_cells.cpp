#include "remap/tin_cells.h"

#include "core/computed.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace gridforge::remap {

namespace {

// Twice the signed area of the triangle (a, b, point): computed in double, delivered in single precision.
float sideOf(const TrianglePoint& a, const TrianglePoint& b, const TrianglePoint& point)
{
    return static_cast<float>((b.x - a.x) * (point.y - a.y) - (point.x - a.x) * (b.y - a.y));
}

// In single precision and in this order. A null corner is not treated apart: it enters as its number.
float meanOfCorners(float southWest, float northWest, float northEast, float southEast)
{
    return 0.25F * (((southWest + northWest) + northEast) + southEast);
}

} // namespace

float idwOneCell(std::int32_t row, std::int32_t column, const CellFlags& wetFlags, const Grid& levels, float exponent)
{
    float weights = 0;
    float weighted = 0;
    for (std::int32_t r = std::max(1, row - 1); r <= std::min(wetFlags.nrows(), row + 1); ++r) {
        for (std::int32_t c = std::max(1, column - 1); c <= std::min(wetFlags.ncols(), column + 1); ++c) {
            if (wetFlags(r, c) == 0) {
                continue;
            }
            const auto rowsApart = static_cast<float>(row - r);
            const auto columnsApart = static_cast<float>(column - c);
            const float distance = std::sqrt(rowsApart * rowsApart + columnsApart * columnsApart);
            const float weight = 1.0F / power(distance, exponent);
            weights += weight;
            weighted += weight * levels(r, c);
        }
    }
    return stored(weighted / weights);
}

void extendOneCellRow(std::int32_t row, const CellFlags& wetFlags, const CellFlags& extentFlags, const Grid& levels,
                      Grid& extended)
{
    constexpr float kExponent = 2.0F;
    for (std::int32_t column = 1; column <= wetFlags.ncols(); ++column) {
        if (wetFlags(row, column) != 0) {
            extended(row, column) = levels(row, column);
        } else if (extentFlags(row, column) != 0) {
            extended(row, column) = idwOneCell(row, column, wetFlags, levels, kExponent);
        }
    }
}

PreparedQuad prepareQuad(const CoarseLevels& coarse, std::int32_t row, std::int32_t column)
{
    const double dx = coarse.columns.cellsize;
    const double dy = coarse.rows.cellsize;
    const double x = coarse.columns.centre(column);
    const double y = coarse.rows.centre(row);
    const TrianglePoint southWest{x, y};
    const TrianglePoint northWest{x, y + dy};
    const TrianglePoint northEast{x + dx, y + dy};
    const TrianglePoint southEast{x + dx, y};
    const TrianglePoint centre{x + 0.5 * dx, y + 0.5 * dy};

    const float valueSouthWest = coarse.extended(row, column);
    const float valueNorthWest = coarse.extended(row + 1, column);
    const float valueNorthEast = coarse.extended(row + 1, column + 1);
    const float valueSouthEast = coarse.extended(row, column + 1);
    const float valueCentre = meanOfCorners(valueSouthWest, valueNorthWest, valueNorthEast, valueSouthEast);

    return {southWest,
            northWest,
            northEast,
            southEast,
            {{prepareTriangle({southWest, northWest, centre, valueSouthWest, valueNorthWest, valueCentre}),
              prepareTriangle({northWest, northEast, centre, valueNorthWest, valueNorthEast, valueCentre}),
              prepareTriangle({northEast, southEast, centre, valueNorthEast, valueSouthEast, valueCentre}),
              prepareTriangle({southEast, southWest, centre, valueSouthEast, valueSouthWest, valueCentre})}}};
}

const PreparedTriangle& triangleUnder(const PreparedQuad& quad, const TrianglePoint& point)
{
    enum { west, north, east, south };
    const float side = sideOf(quad.northWest, quad.southEast, point);
    if (sideOf(quad.southWest, quad.northEast, point) > 0) {
        return quad.triangles[side < 0 ? west : north];
    }
    return quad.triangles[side > 0 ? east : south];
}

// --- The walk over the fine rows -------------------------------------------------------------------------------------

namespace {

void placeColumns(const Axis& coarse, TinPlaces& places)
{
    const std::size_t count = places.columns.size();
    for (auto* const line : {&places.lattice.x, &places.lattice.west, &places.lattice.east, &places.lattice.apex,
                             &places.lattice.edgeLength, &places.lattice.perEdgeLength}) {
        line->resize(count);
    }
    for (std::size_t c = places.first; c < places.last; ++c) {
        const double west = coarse.centre(places.columns[c].base);
        const double east = west + coarse.cellsize;
        places.lattice.x[c] = places.columns[c].centre;
        places.lattice.west[c] = west;
        places.lattice.east[c] = east;
        places.lattice.apex[c] = west + 0.5 * coarse.cellsize;
        places.lattice.edgeLength[c] = triangleDistance({west, 0}, {east, 0});
        places.lattice.perEdgeLength[c] = 1.0 / places.lattice.edgeLength[c];
        places.isFlat = places.isFlat || !(east > west);
    }
}

void takeQuadRow(const CoarseLevels& coarse, const TinPlaces& places, TinWalk& walk, std::int32_t base)
{
    if (walk.quadRow == base) {
        return;
    }
    for (auto* const line : {&walk.values.southWest, &walk.values.northWest, &walk.values.northEast,
                             &walk.values.southEast, &walk.values.apex}) {
        line->resize(places.columns.size());
    }
    walk.quadRow = base;
    walk.lines.south = coarse.rows.centre(base);
    walk.lines.north = walk.lines.south + coarse.rows.cellsize;
    walk.lines.apex = walk.lines.south + 0.5 * coarse.rows.cellsize;
    walk.lines.edgeLength = triangleDistance({0, walk.lines.south}, {0, walk.lines.north});

    const std::span<const float> south = coarse.extended.row(base);
    const std::span<const float> north = coarse.extended.row(base + 1);
    for (std::size_t c = places.first; c < places.last; ++c) {
        const auto east = static_cast<std::size_t>(places.columns[c].base);
        const std::size_t west = east - 1;
        walk.values.southWest[c] = south[west];
        walk.values.northWest[c] = north[west];
        walk.values.northEast[c] = north[east];
        walk.values.southEast[c] = south[east];
        walk.values.apex[c] = meanOfCorners(south[west], north[west], north[east], south[east]);
    }
}

void takeWetRow(const CoarseLevels& coarse, const TinPlaces& places, TinWalk& walk, std::int32_t nearest)
{
    if (walk.wetRow == nearest) {
        return;
    }
    walk.wet.clear();
    walk.wetRow = nearest;
    const float threshold = coarse.wetThreshold();
    const std::span<const float> levels = coarse.levels.row(nearest);
    for (std::size_t c = places.first; c < places.last; ++c) {
        if (!(levels[static_cast<std::size_t>(places.columns[c].nearest - 1)] > threshold)) {
            continue;
        }
        if (walk.wet.empty() || walk.wet.back().last != c) {
            walk.wet.push_back({c, c});
        }
        walk.wet.back().last = c + 1;
    }
}

// Triangle by triangle, where quads have no width and their edges so no slope of 0.
void interpolateFlat(const CoarseLevels& coarse, const TinPlaces& places, const QuadPlace& row, std::size_t first,
                     std::size_t last, float* levels)
{
    for (std::size_t c = first; c < last; ++c) {
        const TrianglePoint point{places.columns[c].centre, row.centre};
        const PreparedQuad quad = prepareQuad(coarse, row.base, places.columns[c].base);
        *levels++ = interpolatePrepared(point, triangleUnder(quad, point));
    }
}

} // namespace

TinPlaces placeTin(const CoarseLevels& coarse, const Axis& fineColumns, const Axis& fineRows)
{
    TinPlaces places;
    places.columns = placesInQuads(fineColumns, coarse.columns);
    places.rows = placesInQuads(fineRows, coarse.rows);
    const auto isInside = [](const QuadPlace& place) { return place.base != 0; };
    const auto begin = places.columns.begin();
    const auto first = std::ranges::find_if(places.columns, isInside);
    places.first = static_cast<std::size_t>(first - begin);
    places.last = static_cast<std::size_t>(std::find_if_not(first, places.columns.end(), isInside) - begin);
    placeColumns(coarse.columns, places);
    return places;
}

void interpolateTinRow(const CoarseLevels& coarse, const TinPlaces& places, TinWalk& walk, std::int32_t fineRow,
                       std::size_t firstColumn, std::span<float> levels, std::span<CellState> states)
{
    assert(levels.size() == states.size() && firstColumn + levels.size() <= places.columns.size());
    std::ranges::fill(levels, coarse.null);
    const QuadPlace& row = places.rows[static_cast<std::size_t>(fineRow - 1)];
    const std::size_t from = std::max(places.first, firstColumn);
    const std::size_t to = std::min(places.last, firstColumn + levels.size());
    if (row.base == 0 || from >= to) {
        return;
    }
    takeQuadRow(coarse, places, walk, row.base);
    takeWetRow(coarse, places, walk, row.nearest);
    const auto interpolate = [&](std::size_t first, std::size_t last) {
        float* const at = levels.data() + (first - firstColumn);
        if (places.isFlat) {
            interpolateFlat(coarse, places, row, first, last, at);
        } else {
            interpolateTinStretch(places.lattice, walk.lines, walk.values, row.centre, first, last, at);
        }
    };
    if (states.front() == CellState::wet) { // so are all
        interpolate(from, to);
        return;
    }
    auto wet =
        std::ranges::partition_point(walk.wet, [from](const WetStretch& stretch) { return stretch.last <= from; });
    for (; wet != walk.wet.end() && wet->first < to; ++wet) {
        const std::size_t first = std::max(from, wet->first);
        const std::size_t last = std::min(to, wet->last);
        std::ranges::fill(states.subspan(first - firstColumn, last - first), CellState::wet);
        interpolate(first, last);
    }
}

} // namespace gridforge::remap
