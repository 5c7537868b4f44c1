// The TIN method: its triangles, read from layers, and its tables.
#pragma once

#include "rainfall/hyetographs.h"
#include "rainfall/points.h"
#include "rainfall/triangle_cells.h"

#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::rainfall {

inline constexpr std::int32_t kMaxRfTriangles = 1000;
inline constexpr std::int32_t kMaxRfTinPoints = 1000;

// Takes the tables, all 0.
void allocateTables(const GridHeader& grid, RfTinTables& tables);

// The pass over the control file that reads the triangles of its layers. A region that is no triangle, or whose
// vertices lie at no point, and triangles past the maximum end the run.
std::vector<RfTriangle> rf_read_triangles(const std::string& controlFile, const RfPoints& points);

// The points as plain arrays; more than the maximum end the run.
RfTinPoints rfTinPoints(const RfPoints& points);

// Ends the run over a cell outside the grid.
void requireInGrid(bool inGrid);

// All triangles in order: a cell in two of them keeps the last.
void rf_tin_factors(const std::vector<RfTriangle>& triangles, const RfTinPoints& points, const GridHeader& grid,
                    RfTinTables& tables);

} // namespace gridforge::rainfall
