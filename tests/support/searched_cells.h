// Grids in memory and searches on them, for tests of what is sampled.
#pragma once

#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "sampling/cell_search.h"
#include "support/lattice.h"
#include "support/odd_cells.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <span>
#include <vector>

namespace gridforge::test {

struct SearchedGrid {
    GridHeader header;
    Grid cells;
};

// Cells of 1, which count from 1 in the order of the file; the corner in the origin.
inline void makeCounted(SearchedGrid& made, std::int32_t rows, std::int32_t columns)
{
    made.header = headerOf(rows, columns, 0, 0, 1.0F);
    ASSERT_TRUE(made.cells.allocate(rows, columns));
    float number = 0;
    for (float& cell : made.cells.cells()) {
        cell = ++number;
    }
}

// Cells of 2.5 of every odd value, as far as they fill it; every third grid has stretches of null.
inline void makeOdd(SearchedGrid& made, std::int32_t rows, std::int32_t columns, float null, std::uint32_t seed)
{
    made.header = headerOf(rows, columns, -20.25, 1000.5, 2.5F);
    made.header.null = null;
    ASSERT_TRUE(made.cells.allocate(rows, columns));
    const std::span<float> cells = made.cells.cells();
    const std::vector<float> odd = oddCells(cells.size(), null, seed);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i] = seed % 3 == 0 && (i / 7) % 5 != 0 ? null : odd[i];
    }
}

// A place anywhere along an axis, or on a corner or the middle of a cell, where many cells are equally near.
inline double placeOn(double origin, double cellsize, std::int32_t count, std::mt19937& random)
{
    std::uniform_real_distribution<double> anywhere(-1, static_cast<double>(count) + 1);
    const double cell = anywhere(random);
    switch (random() % 3) {
    case 0: return origin + cell * cellsize;
    case 1: return origin + std::floor(cell) * cellsize;
    default: return origin + (std::floor(cell) + 0.5) * cellsize;
    }
}

// The plain form of a search: calls take(value, x, y) for every cell of the window that counts, row by row from the south.
template <typename Take>
void forEachSearched(const sampling::CellSearch& s, const GridHeader& h, const Grid& cells, const Take& take)
{
    for (std::int32_t r = s.window.firstRow; r <= s.window.lastRow; ++r) {
        for (std::int32_t c = s.window.firstColumn; c <= s.window.lastColumn; ++c) {
            const double x = h.xll + static_cast<double>(static_cast<float>(c)) * h.cellsize8;
            const double y = h.yll + static_cast<double>(static_cast<float>(r)) * h.cellsize8;
            if (sampling::insideSearchPolygon(s.polygon, x, y) && cells(r, c) != h.null) {
                take(cells(r, c), x, y);
            }
        }
    }
}

inline void expectSame(const std::optional<sampling::FoundCell>& found,
                       const std::optional<sampling::FoundCell>& wanted)
{
    ASSERT_EQ(found.has_value(), wanted.has_value());
    if (found) {
        EXPECT_EQ(bitsOfValue(found->value), bitsOfValue(wanted->value))
            << found->value << " in place of " << wanted->value;
        EXPECT_EQ(found->distance, wanted->distance);
        EXPECT_EQ(found->x, wanted->x);
        EXPECT_EQ(found->y, wanted->y);
    }
}

} // namespace gridforge::test
