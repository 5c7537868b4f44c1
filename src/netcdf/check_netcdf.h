// Checks every status of the NetCDF library.
#pragma once

#include <string_view>

namespace gridforge::netcdf {

// Passes where `status` is 0; otherwise names the call and the library's reason and ends the run.
void checkNetcdf(int status, std::string_view call);

// Names the call and the reason and ends the run.
[[noreturn]] void failNetcdf(std::string_view call, std::string_view reason);

} // namespace gridforge::netcdf
