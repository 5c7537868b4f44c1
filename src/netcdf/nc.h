// -nc: a list of grids as a time series in one NetCDF-4 file, with the maximum over all of them.
#pragma once

#include "grid/grid.h"
#include "run/inputs.h"
#include "run/run_settings.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::netcdf {

void runNc(const run::RunSettings& settings, const run::InputFileList& inputs);

// Kernels.

// The cells of whole rows from the south, row after row: `band` holds a multiple of the columns.
void cellsByRows(const Grid& grid, std::int32_t firstRow, std::span<float> band);
// The cells column after column from the west, each from the south: as many as `band` holds from place `first` on, counted
// from 0.
void cellsByColumns(const Grid& grid, std::size_t first, std::span<float> band);

// Keeps the higher of both where a cell lies above null + 0.01. `maximum` starts at the null.
void raiseMaximum(std::span<const float> cells, float null, std::span<float> maximum);

} // namespace gridforge::netcdf
