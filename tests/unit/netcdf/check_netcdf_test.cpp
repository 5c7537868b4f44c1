#include "netcdf/check_netcdf.h"

#include "support/child_run.h"
#include "support/consoles.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <netcdf.h>
#include <string>

namespace gridforge::test {
namespace {

TEST(CheckNetcdf, NothingIsSaidOfSuccess)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] { netcdf::checkNetcdf(NC_NOERR, "nf90_create"); });
    EXPECT_FALSE(run.ended);
    EXPECT_EQ(run.console, "");
}

TEST(CheckNetcdf, AFailureNamesTheCallAndTheReasonAndEndsTheRun)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] { netcdf::checkNetcdf(NC_EBADDIM, "nf90_def_dim(x)"); });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.console, "ERROR - With nectdf call nf90_def_dim(x)\n"
                           "Netcdf error message: NetCDF: Invalid dimension ID or name\n" +
                               kExits);
    EXPECT_EQ(run.errors, "");
}

TEST(CheckNetcdf, AStatusOfTheSystemHasTheSystemsWords)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] { netcdf::checkNetcdf(ENOSPC, "nf90_close"); });
    EXPECT_EQ(run.console,
              "ERROR - With nectdf call nf90_close\nNetcdf error message: No space left on device\n" + kExits);
}

TEST(CheckNetcdf, ALongReasonIsCutAtEightyCharacters)
{
    const std::string reason = nc_strerror(NC_ECANTEXTEND);
    ASSERT_GT(reason.size(), 80U) << "another text of the library is needed here";
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] { netcdf::checkNetcdf(NC_ECANTEXTEND, "nf90_close"); });
    EXPECT_EQ(run.console,
              "ERROR - With nectdf call nf90_close\nNetcdf error message: " + reason.substr(0, 80) + "\n" + kExits);
}

} // namespace
} // namespace gridforge::test
