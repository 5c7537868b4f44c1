#include "remap/tin.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace gridforge {

namespace {

// Twice the signed area of the triangle (a, b, point): computed in double, delivered in single precision.
float sideOf(const TrianglePoint& a, const TrianglePoint& b, const TrianglePoint& point)
{
    return static_cast<float>((b.x - a.x) * (point.y - a.y) - (point.x - a.x) * (b.y - a.y));
}

bool isWetAt(const CoarseLevels& coarse, std::int32_t row, std::int32_t column)
{
    return coarse.levels(row, column) > coarse.wetThreshold();
}

void prepareCoarseRow(const CoarseLevels& coarse, TinWalk& walk, std::int32_t base)
{
    walk.coarseRow = base;
    for (std::size_t i = 0; i < walk.runs.size(); ++i) {
        walk.quads[i] = prepareQuad(coarse, base, walk.runs[i].base);
    }
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
            const float weight = 1.0F / std::pow(distance, exponent);
            weights += weight;
            weighted += weight * levels(r, c);
        }
    }
    return weighted / weights;
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

    // A null corner is not treated apart: it enters the mean as its number.
    const float valueSouthWest = coarse.extended(row, column);
    const float valueNorthWest = coarse.extended(row + 1, column);
    const float valueNorthEast = coarse.extended(row + 1, column + 1);
    const float valueSouthEast = coarse.extended(row, column + 1);
    const float valueCentre = 0.25F * (((valueSouthWest + valueNorthWest) + valueNorthEast) + valueSouthEast);

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

TinWalk startTinWalk(const CoarseLevels& coarse, const Axis& fineColumns, const Axis& fineRows)
{
    TinWalk walk;
    walk.columns = placesInQuads(fineColumns, coarse.columns);
    walk.rows = placesInQuads(fineRows, coarse.rows);
    for (std::size_t c = 0; c < walk.columns.size(); ++c) {
        const std::int32_t base = walk.columns[c].base;
        if (base == 0) {
            continue;
        }
        if (walk.runs.empty() || walk.runs.back().base != base) {
            walk.runs.push_back({base, c, c});
        }
        walk.runs.back().last = c + 1;
    }
    walk.quads.resize(walk.runs.size());
    return walk;
}

void interpolateTinRow(const CoarseLevels& coarse, TinWalk& walk, std::int32_t fineRow, std::span<float> levels,
                       std::span<CellState> states)
{
    assert(levels.size() == walk.columns.size() && states.size() == walk.columns.size());
    std::ranges::fill(levels, coarse.null);
    const QuadPlace& rowPlace = walk.rows[static_cast<std::size_t>(fineRow - 1)];
    if (rowPlace.base == 0) {
        return;
    }
    if (rowPlace.base != walk.coarseRow) {
        prepareCoarseRow(coarse, walk, rowPlace.base);
    }
    for (std::size_t i = 0; i < walk.runs.size(); ++i) {
        const TinWalk::Run& run = walk.runs[i];
        const bool wetWest = isWetAt(coarse, rowPlace.nearest, run.base);
        const bool wetEast = isWetAt(coarse, rowPlace.nearest, run.base + 1);
        for (std::size_t c = run.first; c < run.last; ++c) {
            const QuadPlace& columnPlace = walk.columns[c];
            if (columnPlace.nearest == run.base ? wetWest : wetEast) {
                states[c] = CellState::wet;
            }
            if (states[c] == CellState::wet) {
                const TrianglePoint point{columnPlace.centre, rowPlace.centre};
                levels[c] = interpolatePrepared(point, triangleUnder(walk.quads[i], point));
            }
        }
    }
}

void depthsWhereWet(std::span<const float> ground, std::span<const CellState> states, float null,
                    std::span<float> levels, std::span<float> depths)
{
    assert(ground.size() == states.size() && levels.size() == states.size() && depths.size() == states.size());
    for (std::size_t i = 0; i < states.size(); ++i) {
        const bool wet = states[i] == CellState::wet && levels[i] >= ground[i];
        depths[i] = wet ? levels[i] - ground[i] : null;
        levels[i] = wet ? levels[i] : null;
    }
}

} // namespace gridforge
