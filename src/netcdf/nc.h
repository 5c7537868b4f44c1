// -nc: a list of grids as a time series in one NetCDF-4 file, with the maximum over all of them.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <cstdint>

namespace gridforge::netcdf {

struct NcOptions {
    std::int32_t compression = 1;
    bool shuffle = true;
    bool part = false; // writes rows, not a block

    friend bool operator==(const NcOptions&, const NcOptions&) = default;
};

void runNc(const run::Common& common, const NcOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::netcdf
