#include "netcdf/check_netcdf.h"

#include "base/ends.h"

#include <netcdf.h>

namespace gridforge {

namespace {

constexpr std::size_t kLibraryTextWidth = 80;

} // namespace

void checkNetcdf(int status, std::string_view call)
{
    if (status == NC_NOERR) {
        return;
    }
    say("ERROR - With nectdf call ", call);
    fail("Netcdf error message: ", cut(nc_strerror(status), kLibraryTextWidth));
}

void printNetcdfVersion()
{
    say("Checking netcdf version: ");
    say(cut(nc_inq_libvers(), kLibraryTextWidth));
}

} // namespace gridforge
