#include "plane/across_line.h"

#include "core/first_index.h"
#include "core/rounding.h"
#include "plane/geometry.h"

#include <algorithm>
#include <limits>

namespace gridforge::inline plane {

AcrossLine acrossLine(const GridHeader& header, double x, double y, float perpendicular)
{
    const auto degrees = static_cast<double>(perpendicular);
    const auto ux = static_cast<float>(cosd(degrees));
    const auto uy = static_cast<float>(sind(degrees));
    return {x, y, static_cast<double>(ux), static_cast<double>(uy), header.cellsize8};
}

std::int32_t samplesToSide(const GridHeader& header, float distance, float share)
{
    const std::int32_t samples = truncateToInt(static_cast<double>((distance / header.cellsize) * share + 1.0F));
    return std::max(samples, -std::numeric_limits<std::int32_t>::max()); // callers take the negative
}

namespace {

std::int32_t columnOf(const AcrossLine& line, const GridHeader& header, std::int32_t k)
{
    return roundToInt((line.sampleX(k) - header.xll) / line.dx);
}

std::int32_t rowOf(const AcrossLine& line, const GridHeader& header, std::int32_t k)
{
    return roundToInt((line.sampleY(k) - header.yll) / line.dx);
}

// The samples whose index is from 1 to `count`. Along the samples an index only rises or only falls.
template <typename Index>
SampleRange clip(const SampleRange& range, std::int32_t count, bool rises, Index index)
{
    if (range.first > range.last) {
        return range;
    }
    const auto first = [&](const auto& holds) { return firstThat(range.first, range.last, holds); };
    const auto from = rises ? first([&](std::int32_t k) { return index(k) >= 1; })
                            : first([&](std::int32_t k) { return index(k) <= count; });
    const auto after = rises ? first([&](std::int32_t k) { return index(k) > count; })
                             : first([&](std::int32_t k) { return index(k) < 1; });
    if (from >= after) {
        return {};
    }
    return {static_cast<std::int32_t>(from), static_cast<std::int32_t>(after - 1)};
}

} // namespace

SampleCell sampleCell(const AcrossLine& line, const GridHeader& header, std::int32_t k)
{
    return {rowOf(line, header, k), columnOf(line, header, k)};
}

double sampleCellX(const GridHeader& header, std::int32_t column)
{
    return header.xll + static_cast<double>(column) * header.cellsize8 - 0.5 * header.cellsize8;
}

double sampleCellY(const GridHeader& header, std::int32_t row)
{
    return header.yll + static_cast<double>(row) * header.cellsize8 - 0.5 * header.cellsize8;
}

SampleRange samplesInGrid(const AcrossLine& line, const GridHeader& header, const SampleRange& wanted)
{
    const SampleRange columns =
        clip(wanted, header.ncols, line.ux >= 0, [&](std::int32_t k) { return columnOf(line, header, k); });
    return clip(columns, header.nrows, line.uy >= 0, [&](std::int32_t k) { return rowOf(line, header, k); });
}

} // namespace gridforge::inline plane
