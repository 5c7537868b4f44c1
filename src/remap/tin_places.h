// How the cells of a stretch of one fine row lie in their triangles: a plain loop over arrays, which is compiled once for every
// processor and once for those with lanes of four.
#pragma once

#include "plane/triangle.h"
#include "remap/tin_row.h"

#include <array>
#include <cmath>
#include <cstddef>

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

// Sides are compared in single precision: what is nearer to 0 than half of its smallest number is 0.
inline constexpr double kSmallestSide = 0x1p-150;

inline double squareOf(double length)
{
    return length * length;
}

// Computes every case and selects one, even if an unused one divides by zero: no branches. Each expression is
// that of the triangle's own routines, in their order; edges run along the axes, so slopes of edges are 0 or have none.
[[gnu::always_inline]] inline void placeInTriangles(const TinColumns& columns, const TinLines& lines, double y,
                                                    std::size_t first, std::size_t count, BlockPlaces& places)
{
    const double* const xOf = columns.x.data() + first;
    const double* const westOf = columns.west.data() + first;
    const double* const eastOf = columns.east.data() + first;
    const double* const apexOf = columns.apex.data() + first;
    const double* const lengthOf = columns.edgeLength.data() + first;
    const double south = lines.south;
    const double north = lines.north;
    const double apexY = lines.apex;
    const double uprightLength = lines.edgeLength;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = xOf[i];
        const double west = westOf[i];
        const double east = eastOf[i];
        const double apexX = apexOf[i];
        const double levelLength = lengthOf[i];

        const double rising = (east - west) * (y - south) - (x - west) * (north - south);
        const double falling = (east - west) * (y - north) - (x - west) * (south - north);
        const bool above = rising > kSmallestSide;
        const bool upright = (above ? -falling : falling) > kSmallestSide;

        // The first corner of the edge: south-west, north-west, north-east or south-east.
        const double cornerX = above ? west : east;
        const double cornerOfAbove = upright ? south : north;
        const double cornerOfBelow = upright ? north : south;
        const double cornerY = above ? cornerOfAbove : cornerOfBelow;
        const bool onAxis = apexX == x;
        const double slope = (y - apexY) / (x - apexX);
        const double edgeSlope = above ? 0.0 : -0.0;
        const double levelCut = ((((slope * apexX) - apexY) + cornerY) - edgeSlope * cornerX) / (slope - edgeSlope);
        const double levelX = onAxis ? apexX : levelCut;
        const double levelY = onAxis ? edgeSlope * (apexX - cornerX) + cornerY : slope * (levelCut - apexX) + apexY;
        const double uprightY = onAxis ? cornerY : slope * (cornerX - apexX) + apexY;
        const double cutX = upright ? cornerX : levelX;
        const double cutY = upright ? uprightY : levelY;

        // Ratios, 0.5 where the whole is too short: then it is the root of 0.25 by 1, so that roots and quotients need no
        // condition.
        const double edge = upright ? uprightLength : levelLength;
        const bool noEdge = edge < kDegenerateLength;
        const double alongEdge = squareOf(cornerX - cutX) + squareOf(cornerY - cutY);
        const double edgePart = std::sqrt(noEdge ? 0.25 : alongEdge);
        places.edgeRatio[i] = static_cast<float>(edgePart / (noEdge ? 1.0 : edge));

        const double toCut = std::sqrt(squareOf(apexX - cutX) + squareOf(apexY - cutY));
        const bool noCut = toCut < kDegenerateLength;
        const double toPoint = squareOf(apexX - x) + squareOf(apexY - y);
        const double pointPart = std::sqrt(noCut ? 0.25 : toPoint);
        places.apexRatio[i] = static_cast<float>(pointPart / (noCut ? 1.0 : toCut));

        const double ofAbove = upright ? double{kWest} : double{kNorth};
        const double ofBelow = upright ? double{kEast} : double{kSouth};
        places.triangle[i] = static_cast<float>(above ? ofAbove : ofBelow);
    }
}

} // namespace gridforge::remap
