#include "netcdf/check_netcdf.h"

#include "host/ends.h"
#include "netcdf/library.h"

#include <cstddef>
#include <cstdlib>

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
    failNetcdf(call, cut(library().nc_strerror(status), kLibraryTextWidth));
}

void failNetcdf(std::string_view call, std::string_view reason)
{
    say("ERROR - With nectdf call ", call);
    fail("Netcdf error message: ", reason);
}

} // namespace gridforge::netcdf
