// The TIN method: each cell takes a triangle of rainfall points and the two ratios of its place in it.
#pragma once

#include "grid/grid.h"
#include "rainfall/hyetographs.h"
#include "rainfall/points.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::rainfall {

inline constexpr std::int32_t kMaxRfTriangles = 1000;
inline constexpr std::int32_t kMaxRfTinPoints = 1000;

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

// Takes the tables, all 0.
void allocateTables(const GridHeader& grid, RfTinTables& tables);

// The pass over the control file that reads the triangles of its layers. A region that is no triangle, or whose
// vertices lie at no point, and triangles past the maximum end the run.
std::vector<RfTriangle> rf_read_triangles(const std::string& controlFile, const RfPoints& points);

// The points as plain arrays; more than the maximum end the run.
RfTinPoints rfTinPoints(const RfPoints& points);

// A triangle seen from the cells: grown by a hair, with the centre of the cell (row, column) at
// (column * cell size, row * cell size).
struct RfCorners {
    std::array<double, 3> x{};
    std::array<double, 3> y{};
};
RfCorners rfCorners(const RfTriangle& triangle, const RfTinPoints& points, const GridHeader& grid);

// Sets the cells from the entering edge of a triangle up to its leaving edge, row by row.
void paintTriangle(std::int32_t number, const RfCorners& corners, const GridHeader& grid, RfTinTables& tables);

// Sets the triangle and the ratios of one cell.
void rf_cell_factors(std::int32_t row, std::int32_t column, std::int32_t number, const RfCorners& corners,
                     const GridHeader& grid, RfTinTables& tables);

// All triangles in order: a cell in two of them keeps the last.
void rf_tin_factors(const std::vector<RfTriangle>& triangles, const RfTinPoints& points, const GridHeader& grid,
                    RfTinTables& tables);

} // namespace gridforge::rainfall
