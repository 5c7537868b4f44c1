#include "netcdf/check_netcdf.h"

#include "host/ends.h"

#include <cstddef>
#include <cstdlib>
#include <netcdf.h>

namespace gridforge::netcdf {

namespace {

constexpr std::size_t kLibraryTextWidth = 80;

// At the exit of the process the library would try again what it could not write, and fall over it.
void endWithoutCleanUp()
{
    std::_Exit(EXIT_SUCCESS);
}

} // namespace

void checkNetcdf(int status, std::string_view call)
{
    if (status == NC_NOERR) {
        return;
    }
    if (status == NC_EHDFERR) {
        replaceProcessEnd(endWithoutCleanUp);
    }
    say("ERROR - With nectdf call ", call);
    fail("Netcdf error message: ", cut(nc_strerror(status), kLibraryTextWidth));
}

} // namespace gridforge::netcdf
