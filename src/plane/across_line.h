// Samples at steps of one cell on the line through a vertex, square to the line that is followed.
#pragma once

#include "plane/grid_header.h"

#include <cstdint>

namespace gridforge::inline plane {

// The sample line through (x, y). Sample k lies k cell sizes along (ux, uy), which are single-precision values.
struct AcrossLine {
    double x = 0;
    double y = 0;
    double ux = 0;
    double uy = 0;
    double dx = 0;

    double sampleX(std::int32_t k) const { return x + (dx * static_cast<double>(k)) * ux; }
    double sampleY(std::int32_t k) const { return y + (dx * static_cast<double>(k)) * uy; }
};

// Through the vertex in the direction `perpendicular`, in degrees.
AcrossLine acrossLine(const GridHeader& header, double x, double y, float perpendicular);

// How much of a distance a search to both sides of the line goes to each, and one to a single side.
inline constexpr float kBothSides = 0.5F;
inline constexpr float kOneSide = 1.0F;

// trunc(distance / cell size x share + 1), in single precision.
std::int32_t samplesToSide(const GridHeader& header, float distance, float share);

struct SampleCell {
    std::int32_t row = 0;
    std::int32_t column = 0;
};
// The cell of a sample by rounding: cells are taken to centre on their lower left corner plus one cell size, half a cell
// off on purpose. Rows and columns may lie outside the grid.
SampleCell sampleCell(const AcrossLine& line, const GridHeader& header, std::int32_t k);
// The place that goes with such a cell.
double sampleCellX(const GridHeader& header, std::int32_t column);
double sampleCellY(const GridHeader& header, std::int32_t row);

// Samples from `first` to `last`; empty where first is above last.
struct SampleRange {
    std::int32_t first = 0;
    std::int32_t last = -1;
};
// Those of the range whose cell lies in the grid. Found by halving, so a search distance far wider than the grid costs
// nothing.
SampleRange samplesInGrid(const AcrossLine& line, const GridHeader& header, const SampleRange& wanted);

// Calls take(k, cell) for each of these samples, in their order.
template <typename Take>
void forEachSample(const AcrossLine& line, const GridHeader& header, const SampleRange& wanted, const Take& take)
{
    const SampleRange inGrid = samplesInGrid(line, header, wanted);
    for (std::int32_t k = inGrid.first; k <= inGrid.last; ++k) {
        take(k, sampleCell(line, header, k));
    }
}

} // namespace gridforge::inline plane
