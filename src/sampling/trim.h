// -trim: each input grid cut to each region of a layer.
#pragma once

#include "grid/grid.h"
#include "run/inputs.h"
#include "run/run_settings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace gridforge {

// A region of one ring in the layout of GisCoordinates: the closing vertex and, behind it, the second one again.
struct TrimRegion {
    std::string name;
    double xmin = 0;
    double xmax = 0;
    double ymin = 0;
    double ymax = 0;
    std::vector<double> x;
    std::vector<double> y;
};

// Rows and columns of a grid, both ends included. Before it is clamped it may lie outside the grid; empty where a first
// is above its last.
struct TrimWindow {
    std::int32_t firstRow = 1;
    std::int32_t lastRow = 0;
    std::int32_t firstColumn = 1;
    std::int32_t lastColumn = 0;
};

TrimWindow trimWindow(const TrimRegion& region, const GridHeader& header);

// Copies the cells of the window whose north-east corner is inside the region to `output`, which has the window's size;
// other cells of `output` stay as they are.
void copyInside(const TrimRegion& region, const GridHeader& header, const Grid& cells, const TrimWindow& window,
                Grid& output);

void runTrim(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
