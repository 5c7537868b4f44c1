// What operations on layers take from a grid of odd cells, one cell after the other, and the text of their numbers.
#pragma once

#include "support/odd_grids.h"
#include "support/plain_region.h"

#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test::plain {

// In a field of `width`, or as long as it is where that is 0.
inline std::string realText(double value, int width, int decimals)
{
    std::string text;
    if (std::isnan(value)) {
        text = "NaN";
    } else if (std::isinf(value)) {
        text = std::string(value < 0 ? "-" : "") + (width > 0 && width < 8 ? "Inf" : "Infinity");
    } else {
        char digits[400];
        std::snprintf(digits, sizeof digits, "%.*f", decimals, value);
        text = digits;
    }
    const auto room = static_cast<std::size_t>(width);
    if (width == 0 || text.size() == room) {
        return text;
    }
    return text.size() < room ? std::string(room - text.size(), ' ') + text : std::string(room, '*');
}

struct PlacedCell {
    float value;
    double x;
    double y;
};

// A grid of kOddRows by kOddColumns cells of 1 with its corner in the origin, rows and columns from 1 in the south-west.
class OddTerrain {
public:
    OddTerrain(float null, std::uint32_t seed) : null_(null), cells_(oddGrid(null, seed)) {}

    float null() const { return null_; }
    float at(int row, int column) const
    {
        return cells_[(kOddRows - static_cast<std::size_t>(row)) * kOddColumns + static_cast<std::size_t>(column - 1)];
    }

    // The cells with a value whose place, `fromCorner` south-west of their north-east corner, lies in the ring: rows from the
    // south, each from the west.
    std::vector<PlacedCell> inside(const std::vector<double>& ring, double fromCorner) const
    {
        std::vector<PlacedCell> found;
        for (int row = 1; row <= static_cast<int>(kOddRows); ++row) {
            for (int column = 1; column <= static_cast<int>(kOddColumns); ++column) {
                const double x = column - fromCorner;
                const double y = row - fromCorner;
                const Verdict place = verdict(ring, x, y);
                EXPECT_FALSE(place.near) << x << ' ' << y;
                if (place.inside && at(row, column) != null_) {
                    found.push_back({at(row, column), x, y});
                }
            }
        }
        return found;
    }

    // Those with a value in a part of a column.
    std::vector<PlacedCell> upColumn(int column, int firstRow, int lastRow) const
    {
        std::vector<PlacedCell> found;
        for (int row = firstRow; row <= lastRow; ++row) {
            if (at(row, column) != null_) {
                found.push_back({at(row, column), static_cast<double>(column), static_cast<double>(row)});
            }
        }
        return found;
    }

private:
    float null_;
    Values cells_;
};

// The polygon of twelve sides that stands for a circle, closed.
inline std::vector<double> circle(double x, double y, double diameter)
{
    constexpr double kPi = 3.14159265358979323846;
    std::vector<double> ring;
    for (int k = 0; k <= 12; ++k) {
        ring.push_back(x + diameter / 2 * std::cos(k % 12 * kPi / 6));
        ring.push_back(y + diameter / 2 * std::sin(k % 12 * kPi / 6));
    }
    return ring;
}

inline float meanOf(const std::vector<PlacedCell>& cells)
{
    float sum = 0;
    for (const PlacedCell& cell : cells) {
        sum += cell.value;
    }
    return sum / static_cast<float>(cells.size());
}

// The first of the lowest cells below `start`, or the highest above it; nullptr for none.
inline const PlacedCell* beyond(const std::vector<PlacedCell>& cells, float start, bool highest)
{
    const PlacedCell* best = nullptr;
    for (const PlacedCell& cell : cells) {
        const float limit = best == nullptr ? start : best->value;
        best = (highest ? cell.value > limit : cell.value < limit) ? &cell : best;
    }
    return best;
}

inline float valueBeyond(const std::vector<PlacedCell>& cells, float start, bool highest)
{
    const PlacedCell* best = beyond(cells, start, highest);
    return best == nullptr ? start : best->value;
}

// A polyline of vertices one apart along a row, at 0.3 beyond a column and 0.41 beyond the row.
inline std::string lineAlong(int row, int firstColumn, int lastColumn)
{
    std::string text = "Pline " + std::to_string(lastColumn - firstColumn + 1) + "\n";
    for (int column = firstColumn; column <= lastColumn; ++column) {
        text += std::to_string(column) + ".3 " + std::to_string(row) + ".41\n";
    }
    return text;
}

} // namespace gridforge::test::plain
