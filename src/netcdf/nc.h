// -nc: a list of grids as a time series in one NetCDF-4 file, with the maximum over all of them.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::netcdf {

void runNc(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::netcdf
