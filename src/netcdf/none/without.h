// The end of a run that would write NetCDF in a build without it.
#pragma once

namespace gridforge::netcdf {

[[noreturn]] void failWithoutNetcdf();

} // namespace gridforge::netcdf
