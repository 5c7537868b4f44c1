// The NetCDF file of a rainfall run in a build without NetCDF: the run ends where it would be opened.
#include "rainfall/rainfall_nc.h"

#include "netcdf/none/without.h"

namespace gridforge::rainfall {

void rf_nc_init(const std::string& /*fileName*/, RfNcRecord& /*record*/, const GridHeader& /*grid*/)
{
    netcdf::failWithoutNetcdf();
}

void putStep(const RfNcRecord& /*record*/, std::int32_t /*step*/, float /*time*/, const Grid& /*cells*/) {}

void putTotal(const RfNcRecord& /*record*/, const Grid& /*cells*/) {}

void closeRainfallNc(RfNcRecord& /*record*/) {}

} // namespace gridforge::rainfall
