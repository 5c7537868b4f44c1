// -nc in a build without NetCDF.
#include "netcdf/nc.h"

#include "host/ends.h"
#include "netcdf/none/without.h"

namespace gridforge::netcdf {

void failWithoutNetcdf()
{
    fail("ERROR - This build has no NetCDF and cannot write .nc files.");
}

void runNc(const run::Common& /*common*/, const NcOptions& /*options*/, const run::InputFileList& /*inputs*/)
{
    failWithoutNetcdf();
}

} // namespace gridforge::netcdf
