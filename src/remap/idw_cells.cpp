#include "remap/idw_cells.h"

#include "core/computed.h"
#include "core/rounding.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <optional>

namespace gridforge::remap {

namespace {

bool isNull(float value, float null)
{
    return std::abs(value - null) <= kNullWidth;
}

// Corner values in turn from the first corner of the triangle's edge.
struct TurnedCorners {
    float z1;
    float z2;
    float z3;
    float z4;
};

// False where both ends of the edge are null.
bool fillCorners(TurnedCorners& z, float null, float& centre)
{
    const bool null1 = isNull(z.z1, null);
    const bool null2 = isNull(z.z2, null);
    if (null1 && null2) {
        return false;
    }
    if (null2) {
        z.z2 = z.z1;
    } else if (null1) {
        z.z1 = z.z2;
    }
    const bool has3 = !isNull(z.z3, null);
    const bool has4 = !isNull(z.z4, null);
    if (has3 && has4) {
        centre = (((z.z1 + z.z2) + z.z3) + z.z4) * 0.25F;
    } else if (has3) {
        centre = (z.z1 + z.z3) * 0.5F;
    } else if (has4) {
        centre = (z.z2 + z.z4) * 0.5F;
    } else {
        centre = (z.z1 + z.z2) * 0.5F;
    }
    return true;
}

// The triangle of the quad under the point, without its values, and the corners turned to begin with its first. Its
// corners lie a ten-thousandth of a cell outside the quad, so that a point on an edge falls inside.
Triangle sampleTriangle(const SamplePlace& x, const SamplePlace& y, double dx, double dy, TurnedCorners& z)
{
    const double a1 = dx / 10000;
    const double a2 = (0.5 * dx) / 10000;
    const double a3 = dy / 10000;
    const double a4 = (0.5 * dy) / 10000;
    const double cx = x.centre;
    const double cy = y.centre;
    const TurnedCorners s = z; // south-west, south-east, north-east, north-west
    Triangle t;
    if (y.fromLower <= x.fromLower) {
        if (y.fromUpper >= x.fromLower) { // south
            t.corner1 = {cx - a1, cy - a4};
            t.corner2 = {cx + dx + a1, cy - a4};
            t.apex = {cx + 0.5 * dx, cy + 0.5 * dy + a4};
        } else { // east
            t.corner1 = {cx + dx + a2, cy - a3};
            t.corner2 = {cx + dx + a2, cy + dy + a3};
            t.apex = {cx + 0.5 * dx - a2, cy + 0.5 * dy};
            z = {s.z2, s.z3, s.z4, s.z1};
        }
    } else if (y.fromUpper >= x.fromLower) { // west
        t.corner1 = {cx - a2, cy + dy + a3};
        t.corner2 = {cx - a2, cy - a3};
        t.apex = {cx + 0.5 * dx + a2, cy + 0.5 * dy};
        z = {s.z4, s.z1, s.z2, s.z3};
    } else { // north
        t.corner1 = {cx + dx + a1, cy + dy + a4};
        t.corner2 = {cx - a1, cy + dy + a4};
        t.apex = {cx + 0.5 * dx, cy + 0.5 * dy - a4};
        z = {s.z3, s.z4, s.z1, s.z2};
    }
    return t;
}

} // namespace

bool extendByIdwRow(std::int32_t row, std::int32_t points, const WetIndex& wet, const CellFlags& extentFlags,
                    const Grid& levels, ListedCells& listed, Grid& extended)
{
    for (std::int32_t column = 1; column <= levels.ncols(); ++column) {
        if ((*wet.rows)(row, column) != 0) {
            extended(row, column) = levels(row, column);
        } else if (extentFlags(row, column) != 0) {
            const std::optional<float> level = idwPoint(points, row, column, wet, levels, listed, kIdwExponent);
            if (!level) {
                return false;
            }
            extended(row, column) = *level;
        }
    }
    return true;
}

SamplePlace samplePlace(double at, const Axis& coarse)
{
    SamplePlace place;
    place.at = at - coarse.origin;
    const double cells = place.at / coarse.cellsize;
    const std::int64_t whole = truncateToInt(cells);
    const std::int64_t base = whole + (cells - static_cast<double>(whole) >= 0.5 ? 1 : 0);
    const std::int64_t containing = whole + 1;
    if (base < 0 || base > coarse.count || containing <= 0) {
        return place;
    }
    place.inside = true;
    place.cell = static_cast<std::int32_t>(std::min<std::int64_t>(containing, coarse.count));
    place.lower = static_cast<std::int32_t>(std::max<std::int64_t>(base, 1));
    place.upper = static_cast<std::int32_t>(std::min<std::int64_t>(base + 1, coarse.count));
    const auto cellsBefore = static_cast<double>(static_cast<float>(base - 1)); // single precision on purpose
    place.centre = coarse.cellsize * cellsBefore + 0.5 * coarse.cellsize;
    place.fromLower = place.at - place.centre;
    place.fromUpper = coarse.cellsize - place.fromLower;
    return place;
}

float sampleCoarseLevel(const SamplePlace& x, const SamplePlace& y, double dx, double dy, const Grid& levels,
                        float null)
{
    if (!x.inside || !y.inside || isNull(levels(y.cell, x.cell), null)) {
        return null;
    }
    TurnedCorners corners{levels(y.lower, x.lower), levels(y.lower, x.upper), levels(y.upper, x.upper),
                          levels(y.upper, x.lower)};
    Triangle triangle = sampleTriangle(x, y, dx, dy, corners);
    if (!fillCorners(corners, null, triangle.apexValue)) {
        return null;
    }
    triangle.value1 = corners.z1;
    triangle.value2 = corners.z2;
    return stored(interpolateTriangleApex({x.at, y.at}, triangle));
}

float sampleCoarseLevel(double x, double y, const Axis& columns, const Axis& rows, const Grid& levels, float null)
{
    return sampleCoarseLevel(samplePlace(x, columns), samplePlace(y, rows), columns.cellsize, rows.cellsize, levels,
                             null);
}

IdwPlaces idwPlaces(const CoarseLevels& coarse, const Axis& fineColumns, const Axis& fineRows)
{
    const auto samplePlaces = [](const Axis& fine, const Axis& lattice) {
        std::vector<SamplePlace> places;
        places.reserve(static_cast<std::size_t>(fine.count));
        for (std::int32_t i = 1; i <= fine.count; ++i) {
            places.push_back(samplePlace(fine.centre(i), lattice));
        }
        return places;
    };
    return {samplePlaces(fineColumns, coarse.columns), samplePlaces(fineRows, coarse.rows),
            placesInCells(fineColumns, coarse.columns), placesInCells(fineRows, coarse.rows)};
}

void interpolateIdwRow(const CoarseLevels& coarse, const IdwPlaces& places, std::int32_t fineRow,
                       std::span<const float> ground, std::span<float> levels, std::span<CellState> states)
{
    assert(ground.size() == places.columns.size() && levels.size() == ground.size() && states.size() == ground.size());
    const auto row = static_cast<std::size_t>(fineRow - 1);
    const SamplePlace& sampleRow = places.sampleRows[row];
    const NearestCell& seedRow = places.rows[row];
    for (std::size_t c = 0; c < ground.size(); ++c) {
        const float level = sampleCoarseLevel(places.sampleColumns[c], sampleRow, coarse.columns.cellsize,
                                              coarse.rows.cellsize, coarse.extended, coarse.null);
        levels[c] = level < ground[c] ? coarse.null : level;

        const NearestCell& seedColumn = places.columns[c];
        if (seedRow.cell != 0 && seedColumn.cell != 0 && isNearCell(seedColumn, seedRow, coarse.columns.cellsize) &&
            coarse.levels(seedRow.cell, seedColumn.cell) > coarse.wetThreshold()) {
            states[c] = CellState::wet;
        }
    }
}

void dropDryLevels(std::span<const CellState> states, float null, std::span<float> levels)
{
    assert(levels.size() == states.size());
    for (std::size_t i = 0; i < states.size(); ++i) {
        levels[i] = states[i] == CellState::wet ? levels[i] : null;
    }
}

void depthsOfWetCells(std::span<const CellState> states, std::span<const float> levels, float null,
                      std::span<float> ground)
{
    assert(ground.size() == states.size() && levels.size() == states.size());
    for (std::size_t i = 0; i < states.size(); ++i) {
        const bool wet = states[i] == CellState::wet && levels[i] >= ground[i];
        ground[i] = wet ? stored(levels[i] - ground[i]) : null;
    }
}

} // namespace gridforge::remap
