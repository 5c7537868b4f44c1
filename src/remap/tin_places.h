// The cells of a stretch of one fine row: how they lie in their triangles, their levels and their depths. Plain loops over arrays,
// which are compiled once for every processor and once for those with AVX2.
#pragma once

#include "core/computed.h"
#include "plane/triangle.h"
#include "remap/cell_state.h"
#include "remap/tin_quads.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace gridforge::remap {

inline constexpr std::size_t kTinBlock = 256;

// How each cell of a block lies in its triangle. The triangle is a small number, kept as a real like the ratios so that all
// lanes have one width.
struct BlockPlaces {
    std::array<float, kTinBlock> triangle;
    std::array<float, kTinBlock> edgeRatio; // along the edge, from its first corner
    std::array<float, kTinBlock> apexRatio; // from the apex to the edge
};

inline constexpr float kWest = 0;
inline constexpr float kNorth = 1;
inline constexpr float kEast = 2;
inline constexpr float kSouth = 3;
inline constexpr float kUnsettled = -1; // the ratios are to be computed as they are defined

// Sides are compared in single precision: what is nearer to 0 than half of its smallest number is 0.
inline constexpr double kSmallestSide = 0x1p-150;

inline double squareOf(double length)
{
    return length * length;
}

// The quads over the columns of a stretch.
struct StretchColumns {
    const double* x;
    const double* west;
    const double* east;
    const double* apex;
    const double* edgeLength;
    const double* perEdgeLength;
};

inline StretchColumns columnsFrom(const TinColumns& columns, std::size_t first)
{
    return {columns.x.data() + first,    columns.west.data() + first,       columns.east.data() + first,
            columns.apex.data() + first, columns.edgeLength.data() + first, columns.perEdgeLength.data() + first};
}

// Where the line from the apex of a cell's triangle through the cell cuts the edge.
struct CellCut {
    bool above;     // the diagonal from south-west to north-east
    bool upright;   // the edge is the western or the eastern one
    double cornerX; // the first of the edge: south-west, north-west, north-east or south-east
    double cornerY;
    double cutX;
    double cutY;
};

// Computes every case and selects one, even if an unused one divides by zero: no branches. Each expression is
// that of the triangle's own routines, in their order; edges run along the axes, so slopes of edges are 0 or have none.
[[gnu::always_inline]] inline CellCut cutOfCell(const TinLines& lines, double x, double west, double east, double apexX,
                                                double y)
{
    const double apexY = lines.apex;
    const double rising = (east - west) * (y - lines.south) - (x - west) * (lines.north - lines.south);
    const double falling = (east - west) * (y - lines.north) - (x - west) * (lines.south - lines.north);
    const bool above = rising > kSmallestSide;
    const bool upright = (above ? -falling : falling) > kSmallestSide;

    const double cornerX = above ? west : east;
    const double cornerOfAbove = upright ? lines.south : lines.north;
    const double cornerOfBelow = upright ? lines.north : lines.south;
    const double cornerY = above ? cornerOfAbove : cornerOfBelow;
    const bool onAxis = apexX == x;
    const double slope = (y - apexY) / (x - apexX);
    const double edgeSlope = above ? 0.0 : -0.0;
    const double levelCut = ((((slope * apexX) - apexY) + cornerY) - edgeSlope * cornerX) / (slope - edgeSlope);
    const double levelX = onAxis ? apexX : levelCut;
    const double levelY = onAxis ? edgeSlope * (apexX - cornerX) + cornerY : slope * (levelCut - apexX) + apexY;
    const double uprightY = onAxis ? cornerY : slope * (cornerX - apexX) + apexY;
    return {above, upright, cornerX, cornerY, upright ? cornerX : levelX, upright ? uprightY : levelY};
}

[[gnu::always_inline]] inline float triangleOf(const CellCut& cut)
{
    const double ofAbove = cut.upright ? double{kWest} : double{kNorth};
    const double ofBelow = cut.upright ? double{kEast} : double{kSouth};
    return static_cast<float>(cut.above ? ofAbove : ofBelow);
}

// --- The ratios as they are defined, cell by cell --------------------------------------------------------------------

// 0.5 where the whole is too short.
inline float ratioOf(double partSquared, double whole)
{
    return whole < kDegenerateLength ? 0.5F : static_cast<float>(std::sqrt(partSquared) / whole);
}

inline void placeExactly(const TinColumns& columns, const TinLines& lines, double y, std::size_t first, std::size_t i,
                         BlockPlaces& places)
{
    const std::size_t c = first + i;
    const double x = columns.x[c];
    const double apexX = columns.apex[c];
    const CellCut cut = cutOfCell(lines, x, columns.west[c], columns.east[c], apexX, y);
    const double alongEdge = squareOf(cut.cornerX - cut.cutX) + squareOf(cut.cornerY - cut.cutY);
    const double toCut = std::sqrt(squareOf(apexX - cut.cutX) + squareOf(lines.apex - cut.cutY));
    const double toPoint = squareOf(apexX - x) + squareOf(lines.apex - y);
    places.edgeRatio[i] = ratioOf(alongEdge, cut.upright ? lines.edgeLength : columns.edgeLength[c]);
    places.apexRatio[i] = ratioOf(toPoint, toCut);
    places.triangle[i] = triangleOf(cut);
}

// --- The same with fewer roots and quotients -------------------------------------------------------------------------

// Without branches.
[[gnu::always_inline]] inline bool all(auto... conditions)
{
    return (static_cast<int>(conditions) & ...) != 0;
}

// A ratio within 2^-40 of itself from the defined one. It rounds to the same single unless it lies as near as that to the middle
// between two: by its last 29 bits, which a single does not have. Not so near 0, where singles are coarser.
[[gnu::always_inline]] inline bool isSettled(double ratio)
{
    constexpr std::uint64_t kReach = 0x2000; // 2^-40 of the ratio, or more
    constexpr std::uint64_t kMiddle = 0x1000'0000;
    constexpr std::uint64_t kLastBits = 0x1fff'ffff & ~(2 * kReach - 1);
    const bool isFarFromMiddle = ((std::bit_cast<std::uint64_t>(ratio) + kReach) & kLastBits) != kMiddle;
    const auto isNotTiny = static_cast<int>(ratio >= 0x1p-100) | static_cast<int>(ratio == 0);
    return all(isFarFromMiddle, isNotTiny != 0);
}

// The length along the edge is the larger of its two parts where the other is no more than what the cut is off the edge by
// rounding. Two lengths are divided before their root is taken. Where that is not near enough the triangle is kUnsettled.
[[gnu::always_inline]] inline void placeInTriangles(const TinColumns& columns, const TinLines& lines, double y,
                                                    std::size_t first, std::size_t count, BlockPlaces& places)
{
    constexpr double kMuchMore = 0x1p20;
    constexpr double kMostLength = 0x1p500; // its square is a number
    constexpr double kShortSquared = 4 * kDegenerateLength * kDegenerateLength;
    const StretchColumns at = columnsFrom(columns, first);
    const TinLines row = lines;
    const double perUprightEdge = 1.0 / row.edgeLength;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = at.x[i];
        const double apexX = at.apex[i];
        const CellCut cut = cutOfCell(row, x, at.west[i], at.east[i], apexX, y);
        const double acrossX = std::abs(cut.cornerX - cut.cutX);
        const double acrossY = std::abs(cut.cornerY - cut.cutY);
        const double longer = acrossX > acrossY ? acrossX : acrossY;
        const double shorter = acrossX > acrossY ? acrossY : acrossX;
        const double edge = cut.upright ? row.edgeLength : at.edgeLength[i];
        const double edgeRatio = longer * (cut.upright ? perUprightEdge : at.perEdgeLength[i]);

        const double toCut = squareOf(apexX - cut.cutX) + squareOf(row.apex - cut.cutY);
        const double toPoint = squareOf(apexX - x) + squareOf(row.apex - y);
        const double apexRatio = std::sqrt(toPoint / toCut);

        const bool settled = all(shorter * kMuchMore <= longer, longer <= kMostLength, edge >= kDegenerateLength,
                                 toCut >= kShortSquared, isSettled(edgeRatio), isSettled(apexRatio));
        places.edgeRatio[i] = static_cast<float>(edgeRatio);
        places.apexRatio[i] = static_cast<float>(apexRatio);
        places.triangle[i] = settled ? triangleOf(cut) : kUnsettled;
    }
}

// --- Levels and depths -----------------------------------------------------------------------------------------------

[[gnu::always_inline]] inline void levelsInTriangles(const TinValues& values, const BlockPlaces& places,
                                                     std::size_t first, std::size_t count, float* levels)
{
    const float* const southWest = values.southWest.data() + first;
    const float* const northWest = values.northWest.data() + first;
    const float* const northEast = values.northEast.data() + first;
    const float* const southEast = values.southEast.data() + first;
    const float* const apex = values.apex.data() + first;
    for (std::size_t i = 0; i < count; ++i) {
        const float sw = southWest[i];
        const float nw = northWest[i];
        const float ne = northEast[i];
        const float se = southEast[i];
        const float triangle = places.triangle[i];
        const float fromAbove = triangle == kWest ? sw : nw;
        const float fromBelow = triangle == kEast ? ne : se;
        const float toAbove = triangle == kWest ? nw : ne;
        const float toBelow = triangle == kEast ? se : sw;
        const float from = triangle < kEast ? fromAbove : fromBelow;
        const float to = triangle < kEast ? toAbove : toBelow;
        const float onEdge = from + (to - from) * places.edgeRatio[i];
        levels[i] = apex[i] + (onEdge - apex[i]) * places.apexRatio[i];
    }
}

[[gnu::always_inline]] inline void depthsOf(const CellState* states, float null, std::size_t count, float* levels,
                                            float* ground)
{
    for (std::size_t i = 0; i < count; ++i) {
        const float level = levels[i];
        const float floor = ground[i];
        const bool isWet = states[i] == CellState::wet;
        const bool stays = isWet && level >= floor;
        ground[i] = stays ? stored(level - floor) : null;
        levels[i] = stays ? level : null;
    }
}

} // namespace gridforge::remap
