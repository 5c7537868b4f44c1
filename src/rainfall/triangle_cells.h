// Each cell takes a triangle of rainfall points and the two ratios of its place in it.
#pragma once

#include "plane/cell_array.h"
#include "plane/grid_header.h"

#include <array>
#include <cstdint>
#include <vector>

namespace gridforge::rainfall {

// The points, from 1, at the vertices of a triangle.
using RfTriangle = std::array<std::int32_t, 3>;

struct RfTinPoints {
    std::vector<double> x;
    std::vector<double> y;
    std::vector<std::int32_t> hyetograph;
};

struct RfTinTables {
    CellArray<std::int32_t> triangle; // from 1; 0 in cells outside all triangles
    Grid ratioA;                      // along the edge from vertex 1 to vertex 2
    Grid ratioB;                      // from vertex 3 to that edge
};

// A triangle seen from the cells: grown by a hair, with the centre of the cell (row, column) at
// (column * cell size, row * cell size).
struct RfCorners {
    std::array<double, 3> x{};
    std::array<double, 3> y{};
};
RfCorners rfCorners(const RfTriangle& triangle, const RfTinPoints& points, const GridHeader& grid);

// Sets the cells from the entering edge of a triangle up to its leaving edge, row by row. False where one of them lies
// outside the grid.
bool paintTriangle(std::int32_t number, const RfCorners& corners, const GridHeader& grid, RfTinTables& tables);

// Sets the triangle and the ratios of one cell. False outside the grid.
bool rf_cell_factors(std::int32_t row, std::int32_t column, std::int32_t number, const RfCorners& corners,
                     const GridHeader& grid, RfTinTables& tables);

} // namespace gridforge::rainfall
