// One time step by each method: the step grid is set in every cell, the cumulative grid grows by it where there is rain.
// Steps count from 0; grids and tables are of one size.
#pragma once

#include "plane/cell_array.h"
#include "rainfall/hyetographs.h"
#include "rainfall/idw.h"
#include "rainfall/points.h"
#include "rainfall/polygon_cells.h"
#include "rainfall/triangles.h"

#include <cstddef>
#include <vector>

namespace gridforge::rainfall {

struct RfGrids {
    Grid step;
    Grid cumulative;
};

// Cells without a hyetograph become null.
void rf_step_polygon(const RfHyetographs& hyetographs, std::size_t step, const RfPolygonTables& tables, float null,
                     RfGrids& grids);

// Cells outside all triangles become null.
void rf_step_tin(const RfHyetographs& hyetographs, const RfPoints& points, std::size_t step,
                 const std::vector<RfTriangle>& triangles, const RfTinPoints& tinPoints, const RfTinTables& tables,
                 float null, RfGrids& grids);

// A cell without points, or on a point, becomes not-a-number, and so does its total.
void rf_step_idw(const RfHyetographs& hyetographs, const RfPoints& points, std::size_t step, const RfIdwTables& tables,
                 RfGrids& grids);

} // namespace gridforge::rainfall
